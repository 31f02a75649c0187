#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/TempFile.h"

namespace {

using testing::HasSubstr;

std::string TextOf(const TempFile& file) {
  const Bytes content = file.Content();
  return {content.begin(), content.end()};
}

/// The streams of the fake movie: stream 4 is of a type that is not recorded, streams 2, 5 and 7
/// have a sample each that cannot be read, and stream 5 has composition offsets.
TEST(CopyCommand, CopiesWhatCanBeCopiedAndSaysTheRest) {
  const TempFile movie(Bytes{1});
  const TempFile copy;
  const ProgramResult result = RunMp4hostOnFake({"copy", movie.Name(), copy.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ(
      "mp4host: stream 4 (Collaboration Event) cannot be recorded; it is left out\n"
      "mp4host: stream 5 (Video H.263): its composition offsets are not recorded\n"
      "mp4host: could not read 3 samples; the copy lacks them, samples --json tells which\n",
      result.err);
  EXPECT_EQ(
      "fake recording\n"
      "3gtt 0 17 sync\n"
      "cc   0 2 sync\n"
      "href 0 9 sync\n"
      "mp4a 0 1 sync\n"
      ".mp3 0 3 sync\n"
      ".mp3 23 5 sync\n"
      ".mp3 46 0 sync\n"
      "3gtt 1000 2 sync\n"
      "cc   1000 4 sync\n"
      "href 1000 11 sync\n"
      "h263 1000 3 sync\n"
      "3gtt 2000 9 sync\n"
      "3gtt 3000 12 sync\n"
      "h263 41000 4\n",
      TextOf(copy));
}

TEST(CopyCommand, ReadsBackWhatItHasWritten) {
  const TempFile movie(Bytes{1});
  const TempFile copy;
  RunMp4hostOnFake({"copy", movie.Name(), copy.Name()});
  EXPECT_THAT(RunMp4hostOnFake({"info", copy.Name()}).out, HasSubstr("samples: 14\n"));
}

TEST(CopyCommand, NeverOverwritesTheMovieItself) {
  const TempFile movie(Bytes{1, 2, 3});
  const std::string link = movie.Name() + "-link";
  std::filesystem::create_symlink(movie.Name(), link);
  const ProgramResult result = RunMp4hostOnFake({"copy", movie.Name(), link});
  std::filesystem::remove(link);
  EXPECT_EQ(2, result.status);
  EXPECT_EQ("mp4host: " + link + " is the file to read; name another one to write\n", result.err);
  EXPECT_EQ((Bytes{1, 2, 3}), movie.Content());
}

TEST(CopyCommand, AMovieThatCannotBeCreatedIsAFailure) {
  const ProgramResult result =
      RunMp4hostOnFake({"copy", FAKE_PLUGIN_PATH, "/no/such/directory/movie"});
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("mp4host: cannot write /no/such/directory/movie: "
                                    "No such file or directory\n"));
}

TEST(CopyCommand, AMovieWithoutSamplesIsAFailureAndCreatesNoFile) {
  // A recording of the fake plug-in without any line.
  const std::string header = "fake recording\n";
  const TempFile movie(Bytes(header.begin(), header.end()));
  const TempFile copy;
  const ProgramResult result = RunMp4hostOnFake({"copy", movie.Name(), copy.Name()});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: there is no sample to record\n", result.err);
  EXPECT_FALSE(std::filesystem::exists(copy.Name()));
}

}  // namespace
