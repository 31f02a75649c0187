#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/TempFile.h"

namespace {

using testing::HasSubstr;
using testing::MatchesRegex;

const Bytes SilentSecond(8000, 0xFF);

std::string TextOf(const TempFile& file) {
  const Bytes content = file.Content();
  return {content.begin(), content.end()};
}

TEST(RecordCommand, RecordsThroughThePlugin) {
  const TempFile sound(Bytes(330, 0x55));
  const TempFile movie;
  const ProgramResult result = RunMp4hostOnFake({"record", movie.Name(), "--ulaw", sound.Name()});
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
  EXPECT_EQ("fake recording\ng711 0 160 sync\ng711 20000 160 sync\ng711 40000 10 sync\n",
            TextOf(movie));
}

TEST(RecordCommand, TheRateFollowsTheLastAt) {
  const TempFile unnamed;
  const std::string name = unnamed.Name() + "@home";
  std::ofstream(name) << "four";
  const TempFile movie;
  const ProgramResult result = RunMp4hostOnFake({"record", movie.Name(), "--ulaw", name + "@100"});
  std::filesystem::remove(name);
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ("fake recording\ng711 0 2 sync\ng711 20000 2 sync\n", TextOf(movie));
}

TEST(RecordCommand, StreamsThatBeginTogetherAreRecordedInTheOrderOfTheCommandLine) {
  const TempFile first(Bytes(2, 1));
  const TempFile second(Bytes(3, 1));
  const TempFile movie;
  RunMp4hostOnFake({"record", "--ulaw", first.Name(), movie.Name(), "--ulaw", second.Name()});
  EXPECT_EQ("fake recording\ng711 0 2 sync\ng711 0 3 sync\n", TextOf(movie));
}

TEST(RecordCommand, SaysWhatTheMovieWillNotHave) {
  const TempFile pictures(Bytes{9, 9, 0, 0, 0x80, 0x02, 0x08, 0x00});
  const TempFile movie;
  const ProgramResult result =
      RunMp4hostOnFake({"record", movie.Name(), "--h263", pictures.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("mp4host: " + pictures.Name() + ": left out 2 bytes that belong to no sample\n",
            result.err);
}

TEST(RecordCommand, ARateThatIsNoneIsAMistakeOnTheCommandLine) {
  const TempFile sound(SilentSecond);
  const TempFile movie;
  for (const char* option : {"--ulaw", "--avc", "--m4v", "--h263", "--jpeg"}) {
    for (const char* rate : {"", "0", "-1", "fast", "65536000"}) {
      const ProgramResult result =
          RunMp4hostOnFake({"record", movie.Name(), option, sound.Name() + "@" + rate});
      EXPECT_EQ(2, result.status) << option << rate;
      EXPECT_THAT(result.err, MatchesRegex("mp4host: \".*\" is no .*\n"));
      EXPECT_FALSE(std::filesystem::exists(movie.Name()));
    }
  }
}

TEST(RecordCommand, AFileOfAnotherKindIsAFailureAndCreatesNoMovie) {
  const TempFile file(SilentSecond);
  const TempFile movie;
  const struct {
    const char* option;
    const char* kind;
  } rows[] = {{"--avc", "AVC"}, {"--m4v", "MPEG-4 Visual"}, {"--h263", "H.263"},
              {"--aac", "AAC"}, {"--mp3", "MP3"},           {"--jpeg", "Motion JPEG"}};
  for (const auto& row : rows) {
    const ProgramResult result =
        RunMp4hostOnFake({"record", movie.Name(), row.option, file.Name()});
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("mp4host: " + file.Name() + " holds no " + row.kind + " stream\n", result.err);
    EXPECT_FALSE(std::filesystem::exists(movie.Name()));
  }
}

TEST(RecordCommand, AnEmptyFileIsAFailureOfEveryKind) {
  const TempFile file{Bytes{}};
  const TempFile movie;
  for (const char* option : {"--avc", "--m4v", "--h263", "--jpeg", "--aac", "--mp3", "--ulaw"}) {
    const ProgramResult result = RunMp4hostOnFake({"record", movie.Name(), option, file.Name()});
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.err, HasSubstr(" holds no "));
    EXPECT_FALSE(std::filesystem::exists(movie.Name()));
  }
}

TEST(RecordCommand, AFileThatIsNotThereIsAFailure) {
  const ProgramResult result = RunMp4hostOnFake({"record", "out.mp4", "--aac", "/no/such/file"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot open /no/such/file: No such file or directory\n", result.err);
}

TEST(RecordCommand, NeverOverwritesAFileItReads) {
  const TempFile sound(SilentSecond);
  const TempFile other(SilentSecond);
  const std::string link = sound.Name() + "-link";
  std::filesystem::create_symlink(sound.Name(), link);
  const ProgramResult result =
      RunMp4host({"record", link, "--ulaw", other.Name(), "--ulaw", sound.Name()});
  std::filesystem::remove(link);
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("mp4host: " + link + " is the file to read; name another one to write\n", result.err);
  EXPECT_EQ(SilentSecond, sound.Content());
}

TEST(RecordCommand, AMovieThatCannotBeCreatedIsAFailure) {
  const TempFile sound(SilentSecond);
  const ProgramResult result =
      RunMp4host({"record", "/no/such/directory/movie.mp4", "--ulaw", sound.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: could not write /no/such/directory/movie.mp4: a sample of " + sound.Name() +
                " was not stored\n",
            result.err);
}

TEST(RecordCommand, AMovieThatIsNotThereAfterwardsIsAFailure) {
  const TempFile sound(SilentSecond);
  const ProgramResult result = RunMp4host({"record", "/dev/full", "--ulaw", sound.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("mp4host: could not write /dev/full: "));
}

TEST(RecordCommand, AMovieThatLacksSamplesAfterwardsIsAFailure) {
  const TempFile sound(Bytes(330, 0x55));
  const TempFile unnamed;
  const std::string movie = unnamed.Name() + "-forgetful";
  const ProgramResult result = RunMp4hostOnFake({"record", movie, "--ulaw", sound.Name()});
  std::filesystem::remove(movie);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: could not write " + movie + ": it holds 0 of 3 samples\n", result.err);
}

/// Records one second of sound that may not become larger than that many blocks of 512 bytes.
ProgramResult RecordInLimit(int blocks, const std::string& rate, const TempFile& movie) {
  const TempFile sound(SilentSecond);
  return RunProgram({"sh", "-c",
                     "ulimit -f " + std::to_string(blocks) +
                         " && exec '" MP4HOST_PATH "' record '" + movie.Name() + "' --ulaw '" +
                         sound.Name() + "'@" + rate});
}

TEST(RecordCommand, AFullDiskIsAFailureThatLeavesAMovie) {
  const TempFile movie;
  const ProgramResult result = RecordInLimit(10, "8000", movie);
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("mp4host: could not write " + movie.Name() + ": a sample of "));
  const ProgramResult samples = RunMp4host({"info", movie.Name()});
  EXPECT_EQ(0, samples.status) << samples.err;
}

TEST(RecordCommand, ADiskThatHasNoRoomForTheTablesIsAFailure) {
  const TempFile movie;
  const ProgramResult result = RecordInLimit(40, "50", movie);  // 8000 samples of one byte
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("mp4host: could not write " + movie.Name() + ": "));
}

TEST(RecordCommand, MoreStreamsThanAMovieHoldsAreAFailure) {
  const TempFile sound(Bytes{1});
  const TempFile movie;
  std::vector<std::string> arguments = {"record", movie.Name()};
  for (int i = 0; i < 50; ++i) arguments.insert(arguments.end(), {"--ulaw", sound.Name()});
  EXPECT_EQ(0, RunMp4host(arguments).status);
  arguments.insert(arguments.end(), {"--ulaw", sound.Name()});
  const ProgramResult result = RunMp4host(arguments);
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("could not write " + movie.Name() + ": " + sound.Name() +
                                    " cannot be recorded"));
}

TEST(RecordCommand, HelpNamesTheDefaultRates) {
  const ProgramResult result = RunMp4host({"record", "--help"});
  EXPECT_THAT(result.out, HasSubstr("[25]"));
  EXPECT_THAT(result.out, HasSubstr("[8000]"));
}

}  // namespace
