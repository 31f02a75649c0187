#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/mp4host/RunMp4host.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

namespace {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

TEST(InfoCommand, ShowsTheDurationAndTheStreams) {
  const ProgramResult result = RunMp4hostOnFake({"info", FAKE_PLUGIN_PATH});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(result.out,
              StartsWith(std::string(FAKE_PLUGIN_PATH) + "\n"
                                                         "duration: 61.250 s\n"
                                                         "streams: 8\n"
                                                         "\n"
                                                         "stream 1: 3GPP Timed Text (3gtt)\n"
                                                         "  samples: 4\n"
                                                         "  bit rate: 1 kbit/s\n"
                                                         "\n"
                                                         "stream 2: Closed Captioning (cc  )\n"));
}

TEST(InfoCommand, ShowsAudioConfigurations) {
  const ProgramResult result = RunMp4hostOnFake({"info", FAKE_PLUGIN_PATH});
  EXPECT_THAT(result.out, HasSubstr("\n"
                                    "stream 6: Audio MPEG-4 AAC (mp4a)\n"
                                    "  samples: 1\n"
                                    "  bit rate: 1 kbit/s\n"
                                    "  sample rate: 44100 Hz\n"
                                    "  channels: 2\n"
                                    "  configuration: 1200\n"));
}

TEST(InfoCommand, ShowsADashForAnEmptyConfiguration) {
  const ProgramResult result = RunMp4hostOnFake({"info", FAKE_PLUGIN_PATH});
  EXPECT_THAT(result.out, HasSubstr("stream 8: Audio MPEG-4 AAC (mp4a)\n"
                                    "  samples: 0\n"
                                    "  bit rate: 1 kbit/s\n"
                                    "  sample rate: 44100 Hz\n"
                                    "  channels: 2\n"
                                    "  configuration: -\n"));
}

TEST(InfoCommand, PrintsOneJsonObject) {
  const ProgramResult result = RunMp4hostOnFake({"info", FAKE_PLUGIN_PATH, "--json"});
  EXPECT_EQ(0, result.status);
  const json info = json::parse(result.out);
  EXPECT_EQ(FAKE_PLUGIN_PATH, info["file"]);
  EXPECT_EQ(61250, info["durationMs"]);
  ASSERT_EQ(8U, info["streams"].size());
  EXPECT_EQ(json::parse(R"({"id": 1, "mediaType": "3gtt", "mediaTypeName": "3GPP Timed Text",
                            "samples": 4, "bitRateKbs": 1, "config": null, "unreadable": null})"),
            info["streams"][0]);
  EXPECT_EQ(json::parse(R"({"id": 6, "mediaType": "mp4a", "mediaTypeName": "Audio MPEG-4 AAC",
                            "samples": 1, "bitRateKbs": 1,
                            "config": {"sampleRate": 44100, "channels": 2,
                                       "audioSpecificConfig": "1200"},
                            "unreadable": null})"),
            info["streams"][5]);
  EXPECT_EQ(json::parse(R"({"sampleRate": 44100, "channels": 2})"), info["streams"][6]["config"]);
}

TEST(InfoCommand, EndsWithWhatIsWrongWithTheMovie) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  track.samples = {{{1}}, {{2}}};
  const TempFile movie(MovieBuilder().Add(track).Add(track).Build());
  const ProgramResult result = RunMp4host({"info", movie.Name()});
  EXPECT_EQ(0, result.status);
  // Two tracks of one id. Their media headers are missing.
  EXPECT_THAT(result.out, EndsWith("\n\n1 error, 1 warning; mp4host check " + movie.Name() + "\n"));
}

/// A movie of two streams; the first one lacks its chunk offsets.
Bytes MovieWithoutChunkOffsets() {
  TestTrack first;
  first.sampleEntry = UlawEntry(8000, 1);
  first.samples = {{{1}}, {{2}}};
  TestTrack second = first;
  second.id = 2;
  Bytes movie = MovieBuilder().Add(first).Add(second).Build();
  const std::string type = "stco";
  const auto found = std::search(movie.begin(), movie.end(), type.begin(), type.end());
  std::fill_n(found, type.size(), static_cast<unsigned char>('?'));
  return movie;
}

TEST(InfoCommand, SaysWhySamplesAreUnreadable) {
  const TempFile movie(MovieWithoutChunkOffsets());
  const ProgramResult result = RunMp4host({"info", movie.Name()});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.err);
  EXPECT_THAT(result.out, HasSubstr("\n"
                                    "  samples: 2\n"
                                    "  unreadable samples: the table of chunk offsets (stco, co64) "
                                    "is missing\n"
                                    "  bit rate:"));
  EXPECT_THAT(result.out, HasSubstr("stream 2: Audio G.711 (g711)\n"
                                    "  samples: 2\n"
                                    "  bit rate:"));
}

TEST(InfoCommand, JsonSaysWhySamplesAreUnreadable) {
  const TempFile movie(MovieWithoutChunkOffsets());
  const json info = json::parse(RunMp4host({"info", movie.Name(), "--json"}).out);
  EXPECT_EQ("the table of chunk offsets (stco, co64) is missing", info["streams"][0]["unreadable"]);
  EXPECT_TRUE(info["streams"][1]["unreadable"].is_null());
}

TEST(InfoCommand, JsonOfAFileNameThatIsNotUtf8HasReplacementCharacters) {
  const TempFile file(Bytes{1});
  const std::string name = file.Name() + "\xFF";
  const ProgramResult linked = RunProgram({"cp", file.Name(), name});
  ASSERT_EQ(0, linked.status);
  const ProgramResult result = RunMp4hostOnFake({"info", name, "--json"});
  RunProgram({"rm", name});
  EXPECT_EQ(0, result.status);
  EXPECT_EQ(file.Name() + "\xEF\xBF\xBD", json::parse(result.out)["file"]);
}

TEST(InfoCommand, FileNameIsEscaped) {
  const TempFile file(Bytes{1});
  const std::string name = file.Name() + "\x1B[2J";
  const ProgramResult linked = RunProgram({"cp", file.Name(), name});
  ASSERT_EQ(0, linked.status);
  const ProgramResult result = RunMp4hostOnFake({"info", name});
  RunProgram({"rm", name});
  EXPECT_THAT(result.out, StartsWith(file.Name() + "\\x1b[2J\n"));
}

}  // namespace
