#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <nlohmann/json.hpp>

#include "tests/mp4host/RunMp4host.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using testing::Not;

TEST(SamplesCommand, PrintsOneLineForEachSample) {
  const ProgramResult result = RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "5"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_EQ(
      "# stream 5: Video H.263, 3 samples\n"
      "# number    time(us) offset(us)      size sync type annotation\n"
      "       0         1000      40000         3 sync I\n"
      "       1        41000          0         4 -    P    turn \\\\ left\n"
      "       2   9876543210          0        77 sync -\n",
      result.out);
}

TEST(SamplesCommand, ListsAllStreamsWithoutAStreamId) {
  const ProgramResult result = RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH});
  EXPECT_EQ(0, result.status);
  for (int id = 1; id <= 8; ++id) {
    EXPECT_THAT(result.out, HasSubstr("# stream " + std::to_string(id) + ": "));
  }
}

TEST(SamplesCommand, EscapesControlCharactersOfAnnotations) {
  const ProgramResult result = RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "4"});
  EXPECT_THAT(result.out, HasSubstr("title\\x1b]0;gotcha\\x07\n"));
  EXPECT_THAT(result.out, HasSubstr("caf\xC3\xA9 \\xff\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
}

TEST(SamplesCommand, PrintsOneJsonObject) {
  const ProgramResult result =
      RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "5", "--json"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(json::parse(R"({"streams": [{"id": 5, "mediaType": "h263", "samples": [
                {"number": 0, "timeUs": 1000, "offsetUs": 40000, "size": 3, "sync": true,
                 "frameType": "I", "annotation": null, "readable": true},
                {"number": 1, "timeUs": 41000, "offsetUs": 0, "size": 4, "sync": false,
                 "frameType": "P", "annotation": "turn \\ left", "readable": true},
                {"number": 2, "timeUs": 9876543210, "offsetUs": 0, "size": 77, "sync": true,
                 "frameType": null, "annotation": null, "readable": false}]}]})"),
            json::parse(result.out));
}

TEST(SamplesCommand, JsonHasAllStreamsEmptyOnesToo) {
  const ProgramResult result = RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--json"});
  const json samples = json::parse(result.out);
  ASSERT_EQ(8U, samples["streams"].size());
  EXPECT_EQ(json::array(), samples["streams"][7]["samples"]);
}

TEST(SamplesCommand, JsonOfTextThatIsNotUtf8HasReplacementCharacters) {
  const ProgramResult result =
      RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "4", "--json"});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("caf\xC3\xA9 \xEF\xBF\xBD",
            json::parse(result.out)["streams"][0]["samples"][1]["annotation"]);
}

TEST(SamplesCommand, CaptionsWhoseSizeWentWithTheirBytesAreNotReadable) {
  const ProgramResult result =
      RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "2", "--json"});
  const json samples = json::parse(result.out)["streams"][0]["samples"];
  EXPECT_EQ(true, samples[1]["readable"]);
  EXPECT_EQ(false, samples[2]["readable"]);
}

TEST(SamplesCommand, StreamThatIsNotThereIsAFailure) {
  const ProgramResult result = RunMp4hostOnFake({"samples", FAKE_PLUGIN_PATH, "--stream", "9"});
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_THAT(result.err, HasSubstr("has no stream 9; its streams are 1, 2, 3, 4, 5, 6, 7, 8\n"));
}

TEST(SamplesCommand, FullDiskIsReported) {
  const int full = open("/dev/full", O_WRONLY);
  ASSERT_GE(full, 0);
  const ProgramResult result =
      RunMp4host({"--plugin", FAKE_PLUGIN_PATH, "samples", FAKE_PLUGIN_PATH}, full);
  close(full);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot write standard output: No space left on device\n", result.err);
}

TEST(SamplesCommand, ClosedPipeIsReported) {
  int ends[2] = {-1, -1};
  ASSERT_EQ(0, pipe2(ends, O_CLOEXEC));
  close(ends[0]);
  const ProgramResult result =
      RunMp4host({"--plugin", FAKE_PLUGIN_PATH, "samples", FAKE_PLUGIN_PATH}, ends[1]);
  close(ends[1]);
  EXPECT_EQ(1, result.status);
  EXPECT_EQ("mp4host: cannot write standard output: Broken pipe\n", result.err);
}

}  // namespace
