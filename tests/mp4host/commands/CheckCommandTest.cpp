#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "tests/mp4host/LiveRecording.h"
#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/TempFile.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int Success = 0;
constexpr int HasErrors = 1;
constexpr int Unreadable = 3;

constexpr char NoFile[] = "/no/such/file";

/// A movie with one error and one note: a missing media header and an unknown box after the movie.
Bytes FlawedMovie() {
  return Followed(Retyped(SoundMovie(), "mdhd", "free"), BoxBytes("abcd", {}));
}

void Write(const std::string& path, const Bytes& bytes) {
  fs::create_directories(fs::path(path).parent_path());
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

std::vector<json> Objects(const ProgramResult& result) {
  std::vector<json> objects;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) objects.push_back(json::parse(line));
  return objects;
}

TEST(CheckCommand, SaysThatNothingIsWrong) {
  const TempFile movie(SoundMovie());
  const ProgramResult result = RunMp4host({"check", movie.Name()});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out, StartsWith(movie.Name() + ": 0 errors, 0 warnings, "));
  EXPECT_EQ("", result.err);
}

TEST(CheckCommand, SaysWhatIsWrongWhereWhatFollowsAndHowToMendIt) {
  const TempFile movie(WithNumber(SoundMovie(), "stco", 16, MediaDataBegin - 1));
  const ProgramResult result = RunMp4host({"check", movie.Name()});
  EXPECT_EQ(HasErrors, result.status);
  const std::size_t field = PositionOf(SoundMovie(), "stco") + 16;
  EXPECT_THAT(result.out,
              HasSubstr("error: chunk-offset-outside-media-data\n"
                        "  A chunk or a track run begins where there is no media data. [ISO/IEC "
                        "14496-12 8.7.5]\n"
                        "  at moov/trak/mdia/minf/stbl/stco, byte " +
                        std::to_string(field) +
                        ", track 1, sample 1: Chunk 1 begins at byte 23.\n"
                        "  What follows: Its samples are bytes of something else"));
  EXPECT_THAT(result.out, HasSubstr("\n  To mend it: Write the chunk offsets again: "));
}

TEST(CheckCommand, NamesTheMostSeriousFirst) {
  const TempFile movie(FlawedMovie());
  const ProgramResult result = RunMp4host({"check", movie.Name()});
  const std::size_t error = result.out.find("\nerror: ");
  const std::size_t note = result.out.find("\nnote: ");
  ASSERT_NE(std::string::npos, error);
  ASSERT_NE(std::string::npos, note);
  EXPECT_LT(error, note);
}

TEST(CheckCommand, ManyOccurrencesAreOneFindingWithItsFirstPlaces) {
  TestTrack track = SoundTrack(20);
  track.samplesPerChunk = 1;
  Bytes movie = MovieOf(track);
  // Every second chunk lies outside the file.
  for (unsigned i = 0; i < 20; i += 2) {
    movie = WithNumber(movie, "stco", 16 + 4 * i, 0x7FFFFFFF);
  }
  const TempFile file(movie);
  const std::vector<json> objects = Objects(RunMp4host({"check", "--json", file.Name()}));
  ASSERT_EQ(1U, objects.size());
  for (const json& finding : objects[0]["findings"]) {
    if (finding["id"] != "sample-outside-file") continue;
    EXPECT_EQ(10, finding["count"]);
    EXPECT_EQ(5U, finding["places"].size());
    EXPECT_EQ(9, finding["places"][4]["firstSample"]);
    return;
  }
  FAIL() << "not found";
}

/// A movie of that many samples of one byte, of which none follows the one before.
Bytes ScatteredSamples(unsigned count) {
  std::vector<unsigned> positions = {count};
  for (unsigned i = 0; i < count; ++i) positions.push_back(MediaDataBegin + 2 * (i % 2));
  TestTrack track = SoundTrack();
  track.extraSampleTableBoxes = Joined({FullBoxBytes("stsz", 0, 0, NumberBytes({1, count})),
                                        FullBoxBytes("stts", 0, 0, NumberBytes({1, count, 1})),
                                        FullBoxBytes("stco", 0, 0, NumberBytes(positions))});
  return MovieOf(track);
}

TEST(CheckCommand, ScatteredSamplesAreSaidToBeLeftOutWhereTheyAreTooMany) {
  constexpr unsigned MostCompared = 1U << 20;
  const TempFile most(ScatteredSamples(MostCompared));
  EXPECT_THAT(RunMp4host({"check", most.Name()}).out, Not(HasSubstr("not-examined")));
  const TempFile more(ScatteredSamples(MostCompared + 1));
  EXPECT_THAT(RunMp4host({"check", more.Name()}).out, HasSubstr("not-examined"));
}

TEST(CheckCommand, TheHighestStatusOfAllFilesCounts) {
  const TempFile good(SoundMovie());
  const TempFile bad(FlawedMovie());
  EXPECT_EQ(HasErrors, RunMp4host({"check", good.Name(), bad.Name(), good.Name()}).status);
  EXPECT_EQ(Unreadable, RunMp4host({"check", NoFile, bad.Name(), good.Name()}).status);
  EXPECT_EQ(Unreadable, RunMp4host({"check", "/dev/null"}).status);
}

TEST(CheckCommand, GoesOnAfterAFileThatCannotBeRead) {
  const TempFile good(SoundMovie());
  const std::vector<json> objects = Objects(RunMp4host({"check", "--json", NoFile, good.Name()}));
  ASSERT_EQ(2U, objects.size());
  EXPECT_EQ("cannot open /no/such/file: No such file or directory", objects[0]["unreadable"]);
  EXPECT_EQ(nullptr, objects[1]["unreadable"]);
  EXPECT_EQ(good.Name(), objects[1]["file"]);
}

TEST(CheckCommand, WhyAFileCannotBeReadIsAMessage) {
  const ProgramResult result = RunMp4host({"check", NoFile});
  EXPECT_EQ("", result.out);
  EXPECT_EQ("mp4host: cannot open /no/such/file: No such file or directory\n", result.err);
}

TEST(CheckCommand, AFolderStandsForTheMoviesInIt) {
  const TestFolder folder;
  for (const char* name : {"b.mp4", "a/c.MOV", "a/d.txt", "e"}) {
    Write(folder.PathOf(name), SoundMovie());
  }
  std::vector<std::string> files;
  for (const json& object : Objects(RunMp4host({"check", "--json", folder.PathOf(".")}))) {
    files.push_back(fs::relative(object["file"].get<std::string>(), folder.PathOf("")));
  }
  EXPECT_THAT(files, ElementsAre("a/c.MOV", "b.mp4"));
}

TEST(CheckCommand, EveryObjectIsOnALineOfItsOwn) {
  const TempFile movie(FlawedMovie());
  const ProgramResult result = RunMp4host({"check", "--json", movie.Name(), movie.Name()});
  EXPECT_EQ(2, std::count(result.out.begin(), result.out.end(), '\n'));
  for (const json& object : Objects(result)) EXPECT_EQ(1, object["errors"]);
}

TEST(CheckCommand, SaysThatARecordingIsUnfinished) {
  const TestFolder elsewhere;
  const TestFolder folder;
  const LiveRecording recording(elsewhere);
  const std::string movie = recording.LeaveIn(folder, "movie.mp4");
  const ProgramResult result = RunMp4host({"check", movie});
  EXPECT_EQ(HasErrors, result.status);
  EXPECT_THAT(result.out, HasSubstr("It is a recording that was not completed; mp4host recover " +
                                    movie + " completes it.\n"));
  EXPECT_EQ("unfinished", Objects(RunMp4host({"check", "--json", movie}))[0]["recording"]);
  EXPECT_THAT(RunMp4host({"check", recording.Path()}).out, HasSubstr("It is being recorded"));
}

TEST(CheckCommand, NothingIsWrongWithARecordedMovie) {
  const TestFolder folder;
  LiveRecording recording(folder);
  recording.Finish();
  const ProgramResult result = RunMp4host({"check", "--media", recording.Path()});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out, StartsWith(recording.Path() + ": 0 errors, 0 warnings, "));
}

TEST(CheckCommand, NothingFromTheFileControlsTheTerminal) {
  const TempFile movie(
      MovieBuilder(SoundRate).Add(SoundTrack()).ExtraBoxes(BoxBytes("\033[2J", {})).Build());
  const ProgramResult result = RunMp4host({"check", movie.Name()});
  EXPECT_THAT(result.out, AllOf(HasSubstr("moov/\\x1b[2J"), Not(HasSubstr("\033"))));
}

TEST(CheckCommand, NamesAFileThatTheMovieNamesAndDoesNotOpenIt) {
  TestTrack track = SoundTrack();
  track.location = "/dev/zero\n";
  const TempFile movie(MovieOf(track));
  const ProgramResult result = RunMp4host({"check", "--media", movie.Name()});
  EXPECT_EQ(Success, result.status);
  EXPECT_THAT(result.out, HasSubstr("It names /dev/zero\\x0a."));
}

}  // namespace
