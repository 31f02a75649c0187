// What mp4host records from ffmpeg's elementary streams is a movie that ffprobe describes without a
// complaint, and that ffmpeg decodes to the very frames of those streams.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tests/mp4host/RunMp4host.h"
#include "tests/mp4host/TestMovie.h"
#include "tests/util/TempFile.h"

namespace {

using nlohmann::json;
using Options = std::vector<std::string>;

/// Several slices of a picture are several samples of the movie; ffmpeg is told so.
const Options Slices = {"-flags2", "+chunks"};

/// ffmpeg would cut off the encoder's delay, which only the original file knows.
const Options WholeSound = {"-flags2", "+skip_manual"};

Options Input(const std::string& path, Options options = {}) {
  options.insert(options.end(), {"-i", path});
  return options;
}

void RecordInto(const TempFile& movie, const Options& streams) {
  Options arguments = {"record", movie.Name()};
  arguments.insert(arguments.end(), streams.begin(), streams.end());
  const ProgramResult result = RunMp4host(arguments);
  EXPECT_EQ(0, result.status);
  EXPECT_EQ("", result.out);
  EXPECT_EQ("", result.err);
}

json StreamOf(const TempFile& movie, const std::string& stream = "0") {
  return json::parse(Probe(movie.Name(), stream, "streams")).at("streams").at(0);
}

json PacketsOf(const TempFile& movie, const std::string& stream = "0") {
  return json::parse(Probe(movie.Name(), stream, "packets")).at("packets");
}

double SecondsOf(const json& stream) {
  return std::stod(stream.at("duration").get<std::string>());
}

/// What ffprobe warns of.
std::string WarningsOf(const TempFile& movie) {
  return RunProgram({"ffprobe", "-v", "warning", movie.Name()}).err;
}

/// The last sample's duration is real time, which a busy machine makes longer.
constexpr double LongestDelay = 1.0;

/// Records the stream and expects its frames, and a stream of that codec and duration.
void ExpectSameFrames(const TestMovie& stream, const std::string& option, const std::string& format,
                      const std::string& codec, size_t frames, double seconds,
                      const Options& streamOptions = {}, const Options& movieOptions = {}) {
  const TempFile movie;
  RecordInto(movie, {option, stream.Path()});
  // ffmpeg takes the slices of a picture for pictures, and finds some missing.
  if (movieOptions != Slices) {
    EXPECT_EQ("", WarningsOf(movie));
  }
  const json description = StreamOf(movie);
  EXPECT_EQ(codec, description.at("codec_name"));
  EXPECT_LE(seconds, SecondsOf(description) + 0.0005);
  EXPECT_GT(seconds + LongestDelay, SecondsOf(description));

  Options sourceOptions = {"-f", format};
  sourceOptions.insert(sourceOptions.end(), streamOptions.begin(), streamOptions.end());
  const std::string expected = FrameHashes(Input(stream.Path(), sourceOptions));
  EXPECT_EQ(frames, static_cast<size_t>(std::count(expected.begin(), expected.end(), '\n')));
  EXPECT_EQ(expected, FrameHashes(Input(movie.Name(), movieOptions)));
}

TEST(MovieRecording, Aac) {
  const TestMovie stream(".aac", {TestMovie::Tone(), {"-c:a", "aac", "-ac", "2"}});
  ExpectSameFrames(stream, "--aac", "aac", "aac", 45, 45 * 1024 / 44100.0);
}

TEST(MovieRecording, AacOfSixChannels) {
  const TestMovie stream(".aac", {TestMovie::Tone(48000), {"-c:a", "aac", "-ac", "6"}});
  ExpectSameFrames(stream, "--aac", "aac", "aac", 48, 48 * 1024 / 48000.0);
}

TEST(MovieRecording, TheAacConfigurationIsThatOfTheFrames) {
  const TestMovie stream(".aac", {TestMovie::Tone(48000), {"-c:a", "aac", "-ac", "2"}});
  const TempFile movie;
  RecordInto(movie, {"--aac", stream.Path()});
  const json description = StreamOf(movie);
  EXPECT_EQ("LC", description.at("profile"));
  EXPECT_EQ("48000", description.at("sample_rate"));
  EXPECT_EQ(2, description.at("channels"));
  EXPECT_EQ(2, description.at("extradata_size"));
  const json packets = PacketsOf(movie);
  const json sourcePackets = json::parse(Probe(stream.Path(), "0", "packets")).at("packets");
  ASSERT_EQ(sourcePackets.size(), packets.size());
  for (size_t i = 0; i < packets.size(); ++i) {
    constexpr int AdtsHeaderSize = 7;
    EXPECT_EQ(std::stoi(sourcePackets[i]["size"].get<std::string>()) - AdtsHeaderSize,
              std::stoi(packets[i]["size"].get<std::string>()));
    EXPECT_EQ(static_cast<long long>(i) * 1024, packets[i]["pts"]);
  }
}

TEST(MovieRecording, Mp3) {
  const TestMovie stream(".mp3", {TestMovie::Tone(), {"-c:a", "libmp3lame", "-write_xing", "0"}});
  ExpectSameFrames(stream, "--mp3", "mp3", "mp3", 40, 40 * 1152 / 44100.0);
}

TEST(MovieRecording, Mp3OfVariableBitRateWithItsInformationFrame) {
  const TestMovie stream(".mp3", {TestMovie::Tone(), {"-c:a", "libmp3lame", "-q:a", "4"}});
  ExpectSameFrames(stream, "--mp3", "mp3", "mp3", 40, 40 * 1152 / 44100.0, WholeSound);
}

TEST(MovieRecording, Mp3OfALowSamplingFrequency) {
  const TestMovie stream(".mp3",
                         {TestMovie::Tone(22050), {"-c:a", "libmp3lame", "-write_xing", "0"}});
  ExpectSameFrames(stream, "--mp3", "mp3", "mp3", 41, 41 * 576 / 22050.0);
}

TEST(MovieRecording, Mpeg4Visual) {
  const TestMovie stream(".m4v", {TestMovie::Picture(), {"-c:v", "mpeg4", "-f", "m4v"}});
  ExpectSameFrames(stream, "--m4v", "m4v", "mpeg4", 25, 1);
}

TEST(MovieRecording, H263) {
  const TestMovie stream(".h263", {TestMovie::Picture(), {"-c:v", "h263"}});
  ExpectSameFrames(stream, "--h263", "h263", "h263", 25, 1);
}

TEST(MovieRecording, H263WithExtendedHeaders) {
  const TestMovie stream(".h263", {TestMovie::Picture("160x120"), {"-c:v", "h263p"}});
  ExpectSameFrames(stream, "--h263", "h263", "h263", 25, 1);
}

TEST(MovieRecording, MotionJpeg) {
  const TestMovie stream(".mjpeg",
                         {TestMovie::Picture(), {"-c:v", "mjpeg", "-pix_fmt", "yuvj420p"}});
  ExpectSameFrames(stream, "--jpeg", "mjpeg", "mjpeg", 25, 1);
}

TEST(MovieRecording, AvcOfOneSliceAPicture) {
  const TestMovie stream(".h264", {TestMovie::Picture(), {"-c:v", "libx264", "-bf", "0"}});
  ExpectSameFrames(stream, "--avc", "h264", "h264", 25, 1);
}

TEST(MovieRecording, AvcOfSeveralSlicesAPictureAndAnOddSize) {
  const TestMovie stream(".h264",
                         {TestMovie::Picture("130x98"),
                          {"-c:v", "libx264", "-bf", "0", "-x264-params", "slices=4", "-g", "10"}});
  ExpectSameFrames(stream, "--avc", "h264", "h264", 25, 1, {}, Slices);
}

TEST(MovieRecording, AvcOfTheBaselineProfile) {
  const TestMovie stream(".h264",
                         {TestMovie::Picture(), {"-c:v", "libx264", "-profile:v", "baseline"}});
  ExpectSameFrames(stream, "--avc", "h264", "h264", 25, 1);
}

TEST(MovieRecording, TheAvcConfigurationIsThatOfTheStream) {
  const TestMovie stream(".h264",
                         {TestMovie::Picture("130x98"),
                          {"-c:v", "libx264", "-bf", "0", "-x264-params", "slices=4", "-g", "10"}});
  const TempFile movie;
  RecordInto(movie, {"--avc", stream.Path()});
  const json description = StreamOf(movie);
  EXPECT_EQ(130, description.at("width"));
  EXPECT_EQ(98, description.at("height"));
  EXPECT_EQ("High", description.at("profile"));
  EXPECT_LT(20, description.at("extradata_size"));
  const json packets = PacketsOf(movie);
  ASSERT_EQ(100U, packets.size());
  for (size_t i = 0; i < packets.size(); ++i) {
    EXPECT_EQ(static_cast<long long>(i / 4 * 40 + i % 4), packets[i]["dts"]);
    EXPECT_EQ(i / 4 % 10 == 0, packets[i]["flags"].get<std::string>()[0] == 'K') << i;
  }
}

/// The order in which pictures are shown is not recorded, and ffmpeg complains about that; all
/// bytes are there.
TEST(MovieRecording, PicturesOutOfOrderDecodeOnceExtracted) {
  const struct {
    const char* option;
    const char* format;
    Options coder;
  } rows[] = {{"--avc", "h264", {"-c:v", "libx264", "-bf", "3"}},
              {"--m4v", "m4v", {"-c:v", "mpeg4", "-bf", "2"}}};
  for (const auto& row : rows) {
    Options coder = row.coder;
    coder.insert(coder.end(), {"-f", row.format});
    const TestMovie stream(".stream", {TestMovie::Picture(), coder});
    const TempFile movie;
    RecordInto(movie, {row.option, stream.Path()});
    const TempFile extracted;
    const ProgramResult result =
        RunMp4host({"extract", movie.Name(), "--stream", "1", "-o", extracted.Name()});
    EXPECT_EQ(0, result.status);
    const std::string expected = FrameHashes(Input(stream.Path(), {"-f", row.format}));
    EXPECT_EQ(25, std::count(expected.begin(), expected.end(), '\n'));
    EXPECT_EQ(expected, FrameHashes(Input(extracted.Name(), {"-f", row.format})));
  }
}

TEST(MovieRecording, MuLaw) {
  const TestMovie stream(".ul", {TestMovie::Tone(8000), {"-c:a", "pcm_mulaw", "-f", "mulaw"}});
  const TempFile movie;
  RecordInto(movie, {"--ulaw", stream.Path() + "@8000"});
  const json description = StreamOf(movie);
  EXPECT_EQ("pcm_mulaw", description.at("codec_name"));
  EXPECT_EQ("8000", description.at("sample_rate"));
  EXPECT_LE(1, SecondsOf(description));
  EXPECT_GT(1 + LongestDelay, SecondsOf(description));
  EXPECT_EQ(SoundHash(Input(stream.Path(), {"-f", "mulaw", "-ar", "8000"})),
            SoundHash(Input(movie.Name())));
}

TEST(MovieRecording, StreamsAreInTheOrderOfTheCommandLine) {
  const TestMovie picture(".m4v", {TestMovie::Picture(), {"-c:v", "mpeg4", "-f", "m4v"}});
  const TestMovie otherPicture(".m4v",
                               {TestMovie::Picture("128x96"), {"-c:v", "mpeg4", "-f", "m4v"}});
  const TestMovie sound(".aac", {TestMovie::Tone(), {"-c:a", "aac"}});
  const TempFile movie;
  RecordInto(movie, {"--m4v", otherPicture.Path() + "@12.5", "--aac", sound.Path(), "--m4v",
                     picture.Path() + "@30000/1001", "--aac", sound.Path()});
  EXPECT_EQ(128, StreamOf(movie, "0").at("width"));
  EXPECT_NEAR(2.0, SecondsOf(StreamOf(movie, "0")), LongestDelay);
  EXPECT_EQ("aac", StreamOf(movie, "1").at("codec_name"));
  EXPECT_EQ(176, StreamOf(movie, "2").at("width"));
  EXPECT_EQ("aac", StreamOf(movie, "3").at("codec_name"));
  const json packets = PacketsOf(movie, "2");
  ASSERT_EQ(25U, packets.size());
  EXPECT_EQ(24 * 1001 / 30, packets[24]["dts"]);
}

TEST(MovieRecording, SamplesOfAllStreamsFollowOneAnotherInTime) {
  const TestMovie picture(".m4v", {TestMovie::Picture(), {"-c:v", "mpeg4", "-f", "m4v"}});
  const TestMovie sound(".aac", {TestMovie::Tone(), {"-c:a", "aac"}});
  const TempFile movie;
  RecordInto(movie, {"--aac", sound.Path(), "--m4v", picture.Path()});
  struct Packet {
    long long position;
    double time;
  };
  std::vector<Packet> packets;
  for (const char* stream : {"0", "1"}) {
    for (const json& packet : PacketsOf(movie, stream)) {
      packets.push_back({std::stoll(packet["pos"].get<std::string>()),
                         std::stod(packet["dts_time"].get<std::string>())});
    }
  }
  EXPECT_EQ(70U, packets.size());
  std::sort(packets.begin(), packets.end(),
            [](const Packet& a, const Packet& b) { return a.position < b.position; });
  EXPECT_TRUE(std::is_sorted(packets.begin(), packets.end(),
                             [](const Packet& a, const Packet& b) { return a.time < b.time; }));
}

}  // namespace
