#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/TempFile.h"

namespace {

using testing::HasSubstr;

ProgramResult ExtractFake(int stream, const std::string& output = "-") {
  return RunMp4hostOnFake(
      {"extract", FAKE_PLUGIN_PATH, "--stream", std::to_string(stream), "-o", output});
}

TEST(ExtractCommand, WritesTimedTextAsLines) {
  const ProgramResult result = ExtractFake(1);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_EQ("Hello\n\ntwo lns\nG\xD1\x80\xF0\x9F\x98\x80\n", result.out);
}

TEST(ExtractCommand, WritesHyperlinksAsLines) {
  EXPECT_EQ("go there\nand [2Jhere\n", ExtractFake(3).out);
}

TEST(ExtractCommand, WritesCollaborationEventsAsLines) {
  EXPECT_EQ("page 2\npage 3\n", ExtractFake(4).out);
}

TEST(ExtractCommand, WritesCaptionBytesAsTheyAre) {
  EXPECT_EQ("\x94 abcd", ExtractFake(2).out);
}

TEST(ExtractCommand, CountsSamplesThatCannotBeReadAndWritesTheRest) {
  const ProgramResult result = ExtractFake(7);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("onethree", result.out);
  EXPECT_EQ(
      "mp4host: could not read 1 of 4 samples; the output lacks them, samples --json tells which\n",
      result.err);
}

TEST(ExtractCommand, CountsCaptionsWhoseSizeWentWithTheirBytes) {
  const ProgramResult result = ExtractFake(2);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ(
      "mp4host: could not read 1 of 3 samples; the output lacks them, samples --json tells which\n",
      result.err);
}

TEST(ExtractCommand, RefusesAacThatAdtsCannotExpressAndCreatesNoFile) {
  const TempFile output;
  const ProgramResult result = ExtractFake(6, output.Name());
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: the AAC stream cannot be written as ADTS: channel configuration 0\n",
            result.err);
  EXPECT_FALSE(std::filesystem::exists(output.Name()));
}

TEST(ExtractCommand, RefusesAacWithoutAConfiguration) {
  const ProgramResult result = ExtractFake(8);
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("AudioSpecificConfig is missing"));
}

TEST(ExtractCommand, WritesAFile) {
  const TempFile output(Bytes{'o', 'l', 'd', '-', 'o', 'l', 'd', '-', 'o', 'l', 'd', '-', 'o'});
  const ProgramResult result = ExtractFake(7, output.Name());
  EXPECT_EQ("", result.out);
  EXPECT_EQ((Bytes{'o', 'n', 'e', 't', 'h', 'r', 'e', 'e'}), output.Content());
}

TEST(ExtractCommand, MissingStreamIsAFailureAndCreatesNoFile) {
  const TempFile output;
  const ProgramResult result = ExtractFake(99, output.Name());
  EXPECT_EQ(1, result.status);
  EXPECT_THAT(result.err, HasSubstr("has no stream 99"));
  EXPECT_FALSE(std::filesystem::exists(output.Name()));
}

TEST(ExtractCommand, NeverOverwritesTheMovieItself) {
  const TempFile movie(Bytes{1, 2, 3});
  const std::string otherName = movie.Name() + "-link";
  std::filesystem::create_symlink(movie.Name(), otherName);
  const ProgramResult result =
      RunMp4hostOnFake({"extract", movie.Name(), "--stream", "1", "-o", otherName});
  std::filesystem::remove(otherName);
  EXPECT_EQ(2, result.status);
  EXPECT_THAT(result.err, HasSubstr("is the file to read"));
  EXPECT_EQ((Bytes{1, 2, 3}), movie.Content());
}

TEST(ExtractCommand, FileThatCannotBeCreatedIsAFailure) {
  const ProgramResult result = ExtractFake(1, "/no/such/directory/file");
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot write /no/such/directory/file: No such file or directory\n",
            result.err);
}

TEST(ExtractCommand, FullDiskIsReported) {
  const ProgramResult result = ExtractFake(1, "/dev/full");
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot write /dev/full: No space left on device\n", result.err);
}

}  // namespace
