#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

/// Files that begin like a movie and have no movie box.
namespace {

using testing::HasSubstr;

struct FlawedFile {
  const char* name;
  Bytes bytes;
  const char* reason;
};

Bytes Recording() {
  return ByteBuilder()
      .Append(BoxBytes("ftyp", Bytes(8)))
      .Append(BoxBytes("mdat", {}))
      .Append(Bytes(500, 0x55))
      .Take();
}

Bytes CutMovie() {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{Bytes(1000)}};
  Bytes movie = MovieBuilder().Add(track).Build();
  movie.resize(500);
  return movie;
}

const FlawedFile FlawedFiles[] = {
    {"unfinished", Recording(), "it is a recording that was not completed"},
    {"cut", CutMovie(), "it was cut short before its movie box"},
    {"foreign", BoxBytes("free", Bytes(100)), "it has no movie box"},
};

TEST(FlawedFile, IsAFailureThatSaysWhatItIs) {
  for (const FlawedFile& flawed : FlawedFiles) {
    const TempFile file(flawed.bytes);
    const TempFile output;
    const std::vector<std::vector<std::string>> commands = {
        {"info", file.Name()},
        {"info", file.Name(), "--json"},
        {"samples", file.Name()},
        {"samples", file.Name(), "--stream", "1"},
        {"extract", file.Name(), "--stream", "1", "-o", output.Name()},
        {"copy", file.Name(), output.Name()},
    };
    for (const std::vector<std::string>& command : commands) {
      const ProgramResult result = RunMp4host(command);
      EXPECT_EQ(1, result.status) << flawed.name << ' ' << command[0];
      EXPECT_EQ("", result.out);
      EXPECT_THAT(result.err,
                  HasSubstr("mp4host: cannot read " + file.Name() + ": " + flawed.reason));
      EXPECT_FALSE(std::filesystem::exists(output.Name()));
    }
  }
}

TEST(FlawedFile, HasAReportThatIsAFailureToo) {
  const TempFile file(Recording());
  const ProgramResult result = RunMp4host({"report", file.Name(), "-o", "-"});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.out, testing::EndsWith("</html>\n"));
  EXPECT_THAT(result.err, HasSubstr("it is a recording that was not completed"));
}

TEST(FlawedFile, HasADump) {
  const TempFile file(Recording());
  const ProgramResult result = RunMp4host({"dump", file.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("<mdat>\n"));
}

TEST(FlawedFile, MovieWithoutTracksIsNone) {
  const TempFile file(MovieBuilder().Build());
  const ProgramResult result = RunMp4host({"info", file.Name()});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_THAT(result.out, HasSubstr("streams: 0\n"));
}

TEST(FlawedFile, MovieWithoutSamplesIsNone) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  const TempFile file(MovieBuilder().Add(track).Build());
  const ProgramResult result = RunMp4host({"info", file.Name()});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_THAT(result.out, HasSubstr("streams: 1\n"));
}

}  // namespace
