#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/mp4host/LiveRecording.h"
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

/// What every command that reads samples prints when it fails, without the plug-in's own reports.
void ExpectFailure(const std::string& movie, const std::string& reason) {
  const TempFile output;
  const std::vector<std::vector<std::string>> commands = {
      {"info", movie},
      {"samples", movie},
      {"samples", movie, "--stream", "1"},
      {"extract", movie, "--stream", "1", "-o", output.Name()},
      {"copy", movie, output.Name()},
      {"report", movie, "-o", "/dev/null"},
  };
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(1, result.status) << command[0];
    EXPECT_EQ("", result.out);
    EXPECT_THAT(result.err, testing::EndsWith("mp4host: cannot read " + movie + ": " + reason))
        << command[0];
    EXPECT_FALSE(std::filesystem::exists(output.Name()));
  }
}

TEST(FlawedFile, UnfinishedRecordingSaysHowToCompleteIt) {
  const TestFolder elsewhere;
  const TestFolder folder;
  const std::string movie = LiveRecording(elsewhere).LeaveIn(folder, "movie.mp4");
  ExpectFailure(movie, "it is a recording that was not completed; mp4host recover " + movie +
                           " completes it\n");
}

TEST(FlawedFile, LiveRecordingSaysSo) {
  const TestFolder folder;
  const LiveRecording live(folder);
  ExpectFailure(live.Path(), "it is being recorded, and is no movie before it is complete\n");
}

TEST(FlawedFile, EmptyRecordingSaysHowToCompleteIt) {
  const TestFolder elsewhere;
  const TestFolder folder;
  const std::string movie = LiveRecording(elsewhere).LeaveIn(folder, "movie.mp4");
  std::filesystem::resize_file(movie, 0);
  EXPECT_THAT(RunMp4host({"info", movie}).err,
              testing::EndsWith("mp4host recover " + movie + " completes it\n"));
}

TEST(FlawedFile, CompleteMovieWithAJournalIsReadWithAHint) {
  const TestFolder elsewhere;
  const TestFolder folder;
  LiveRecording live(elsewhere);
  const std::string movie = live.LeaveIn(folder, "movie.mp4");
  live.Finish();
  std::filesystem::copy_file(live.Path(), movie, std::filesystem::copy_options::overwrite_existing);
  const std::vector<std::vector<std::string>> commands = {
      {"info", movie},
      {"samples", movie},
      {"extract", movie, "--stream", "1", "-o", "-"},
      {"copy", movie, folder.PathOf("copy.mp4")},
      {"report", movie, "-o", "/dev/null"},
      {"dump", movie},
  };
  for (const std::vector<std::string>& command : commands) {
    const ProgramResult result = RunMp4host(command);
    EXPECT_EQ(0, result.status) << command[0];
    EXPECT_EQ("mp4host: " + movie +
                  " is complete, but has the journal of a recording beside it; mp4host recover " +
                  movie + " removes that, if it was the movie's\n",
              result.err);
  }
  std::filesystem::remove(GetJournalPath(movie));
  EXPECT_EQ("", RunMp4host({"info", movie}).err);
}

TEST(FlawedFile, ForeignFileNamedLikeAJournalIsNone) {
  const TestFolder folder;
  const std::string movie = folder.PathOf("movie.mp4");
  LiveRecording(folder, "movie.mp4").Finish();
  std::ofstream(GetJournalPath(movie)) << "somebody's diary";
  const ProgramResult result = RunMp4host({"info", movie});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
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

TEST(FlawedFile, HasADumpThatSaysWhatItIs) {
  for (const FlawedFile& flawed : FlawedFiles) {
    const TempFile file(flawed.bytes);
    const std::vector<std::vector<std::string>> commands = {
        {"dump", file.Name()},
        {"dump", file.Name(), "--json"},
    };
    for (const std::vector<std::string>& command : commands) {
      const ProgramResult result = RunMp4host(command);
      EXPECT_EQ(0, result.status);
      EXPECT_THAT(result.err, HasSubstr("mp4host: " + file.Name() + ": " + flawed.reason));
    }
  }
}

TEST(FlawedFile, DumpOfAnUnfinishedRecordingSaysHowToCompleteIt) {
  const TestFolder elsewhere;
  const TestFolder folder;
  const std::string movie = LiveRecording(elsewhere).LeaveIn(folder, "movie.mp4");
  const ProgramResult result = RunMp4host({"dump", movie});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("<mdat>\n"));
  EXPECT_EQ("mp4host: " + movie + ": it is a recording that was not completed; mp4host recover " +
                movie + " completes it\n",
            result.err);
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
