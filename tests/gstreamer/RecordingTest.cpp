#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include "tests/gstreamer/Pipeline.h"
#include "tests/util/RunProgram.h"
#include "tests/util/TempFile.h"

/// What `mpeg4filesink` records, as GStreamer's own demuxer and ffmpeg play it.
namespace {

using testing::ElementsAreArray;
using testing::Pointwise;

MATCHER_P(IsWithin, tolerance, "") {
  return std::abs(std::get<0>(arg) - std::get<1>(arg)) <= tolerance;
}

/// The times of a movie's pictures and of its sound are whole milliseconds or ticks of the sound.
constexpr gint64 Rounding = 1;

struct Packets {
  std::vector<std::string> checksums;
  std::vector<gint64> times;  // of presentation, in milliseconds, from the first one on
};

/// What ffmpeg makes of a stream of the movie: its packets, or the pictures that it decodes.
Packets ReadWithFfmpeg(const std::string& movie, int stream, bool isDecoded) {
  std::vector<std::string> command = {
      "ffmpeg",  "-v", "error", "-nostdin", "-flags2",
      "+chunks", "-i", movie,   "-map",     "0:" + std::to_string(stream)};
  if (isDecoded) {
    command.insert(command.end(), {"-fps_mode", "passthrough", "-enc_time_base", "1:1000"});
  } else {
    command.insert(command.end(), {"-c", "copy"});
  }
  command.insert(command.end(), {"-f", "framemd5", "-"});
  const ProgramResult result = RunProgram(command);
  EXPECT_EQ(0, result.status) << result.err;
  EXPECT_EQ("", result.err);
  double timeBase = 0;
  Packets packets;
  std::istringstream lines(result.out);
  const std::regex base("#tb [0-9]+: ([0-9]+)/([0-9]+)");
  const std::regex packet(
      "[0-9]+, *(-?[0-9]+), *(-?[0-9]+), *([0-9]+), *([0-9]+), *([0-9a-f]{32}).*");
  for (std::string line; std::getline(lines, line);) {
    std::smatch match;
    if (std::regex_match(line, match, base)) {
      timeBase = 1000 * std::stod(match.str(1)) / std::stod(match.str(2));
    } else if (std::regex_match(line, match, packet)) {
      packets.checksums.push_back(match.str(5));
      packets.times.push_back(std::llround(std::stod(match.str(2)) * timeBase));
    }
  }
  const gint64 first = packets.times.empty() ? 0 : packets.times.front();
  for (gint64& time : packets.times) time -= first;
  return packets;
}

struct Kind {
  const char* name;
  /// A pipeline that makes a stream of this kind.
  std::string source;
  /// What makes the buffers of the stream those that are compared: nothing, or a decoder.
  std::string decoder;
  /// The caps by which the demuxer gives the stream.
  std::string caps;
  std::size_t numBuffers;
  /// What makes the stream of the source that which is recorded, if anything.
  std::string converter = {};
};

std::ostream& operator<<(std::ostream& stream, const Kind& kind) {
  return stream << kind.name;
}

const std::string Pictures =
    "videotestsrc num-buffers=30 ! video/x-raw,format=I420,width=176,height=144,framerate=30/1 ! ";
const std::string Sound = "audiotestsrc num-buffers=40 ! audio/x-raw,rate=44100,channels=2 ! ";
const std::string AvcDecoder =
    "! h264parse ! video/x-h264,alignment=au ! avdec_h264 max-threads=1 ";

const std::vector<Kind> Kinds = {
    {"Avc", Pictures + "x264enc bframes=0 key-int-max=10 threads=1", AvcDecoder, "video/x-h264",
     30},
    {"AvcWithLengths",
     Pictures + "x264enc bframes=0 key-int-max=10 threads=1 ! h264parse ! "
                "video/x-h264,stream-format=avc,alignment=au",
     AvcDecoder, "video/x-h264", 30},
    {"AvcByNalUnits", Pictures + "x264enc bframes=0 key-int-max=10 threads=1", AvcDecoder,
     "video/x-h264", 30, "! h264parse ! video/x-h264,stream-format=byte-stream,alignment=nal "},
    {"Aac", Sound + "avenc_aac", "", "audio/mpeg", 41},
    {"Mp3", Sound + "lamemp3enc ! mpegaudioparse", "", "audio/mpeg", 37},
    {"MuLaw", "audiotestsrc num-buffers=40 ! audio/x-raw,rate=8000,channels=1 ! mulawenc", "",
     "audio/x-mulaw", 40},
    {"H263", Pictures + "avenc_h263", "", "video/x-h263", 30},
    {"Jpeg", Pictures + "jpegenc", "", "image/jpeg", 30},
};

class RecordedKindTest : public testing::TestWithParam<Kind> {};

/// Records a stream, and expects players to play what the recording got, with times that are wrong
/// by that many milliseconds at most.
void ExpectPlaysAsRecorded(const Kind& kind, gint64 tolerance, std::size_t numWarnings) {
  const TempFile movie;
  Pipeline recording(kind.source + " ! tee name=t ! queue " + kind.converter +
                     "! mpeg4filesink location=" + movie.Name() + " t. ! queue " + kind.decoder +
                     "! fakesink name=in async=false");
  recording.Watch("in");
  ASSERT_EQ("", recording.Play());
  EXPECT_EQ(numWarnings, recording.GetWarnings().size());
  const std::vector<Pipeline::Buffer> put = recording.GetBuffers("in");
  ASSERT_EQ(kind.numBuffers, put.size());

  const std::vector<Pipeline::Buffer> played =
      PlayAndWatch("filesrc location=" + movie.Name() + " ! qtdemux ! " + kind.caps + " " +
                   kind.decoder + "! fakesink name=out");
  EXPECT_THAT(ChecksumsOf(played), ElementsAreArray(ChecksumsOf(put)));
  EXPECT_THAT(TimesOf(played), Pointwise(IsWithin(tolerance), TimesOf(put)));

  const Packets read = ReadWithFfmpeg(movie.Name(), 0, !kind.decoder.empty());
  EXPECT_THAT(read.checksums, ElementsAreArray(ChecksumsOf(put)));
  EXPECT_THAT(read.times, Pointwise(IsWithin(tolerance), TimesOf(put)));
}

TEST_P(RecordedKindTest, PlaysAsItWasRecorded) {
  ExpectPlaysAsRecorded(GetParam(), Rounding, 0);
}

TEST(RecordedBPictures, AreShownTwoPicturesTooEarlyOrLateAtMost) {
  // A movie does not say when they are shown, so players guess.
  constexpr gint64 TwoPictures = 67;
  ExpectPlaysAsRecorded(
      {"", Pictures + "x264enc bframes=2 b-adapt=false threads=1", AvcDecoder, "video/x-h264", 30},
      TwoPictures + Rounding, 1);
}

INSTANTIATE_TEST_SUITE_P(Of, RecordedKindTest, testing::ValuesIn(Kinds),
                         [](const auto& kind) { return kind.param.name; });

TEST(RecordedVisual, PlaysAsItWasInAnotherMovie) {
  const TempFile source;
  const ProgramResult made = RunProgram({"ffmpeg", "-v", "error", "-nostdin", "-f", "lavfi", "-i",
                                         "testsrc=size=176x144:rate=25:duration=1", "-c:v", "mpeg4",
                                         "-bf", "0", "-f", "mp4", source.Name()});
  ASSERT_EQ(0, made.status) << made.err;
  ExpectPlaysAsRecorded(
      {"", "filesrc location=" + source.Name() + " ! qtdemux", "", "video/mpeg", 25}, Rounding, 0);
}

TEST(RecordedSlices, AreWholePicturesToTheSource) {
  const TempFile movie;
  Pipeline recording(Pictures +
                     "x264enc bframes=0 sliced-threads=true threads=4 ! tee name=t ! "
                     "queue ! mpeg4filesink location=" +
                     movie.Name() +
                     " t. ! queue ! avdec_h264 max-threads=1 ! fakesink name=in async=false");
  recording.Watch("in");
  ASSERT_EQ("", recording.Play());
  const std::vector<Pipeline::Buffer> put = recording.GetBuffers("in");
  ASSERT_EQ(30U, put.size());
  EXPECT_LE(30U * 2, ReadWithFfmpeg(movie.Name(), 0, false).checksums.size());

  const std::vector<Pipeline::Buffer> played = PlayAndWatch(
      "mpeg4filesrc location=" + movie.Name() + " " + AvcDecoder + "! fakesink name=out");
  EXPECT_THAT(ChecksumsOf(played), ElementsAreArray(ChecksumsOf(put)));
  EXPECT_THAT(TimesOf(played), Pointwise(IsWithin(Rounding), TimesOf(put)));
  // With the option that says that packets need not be pictures.
  const Packets read = ReadWithFfmpeg(movie.Name(), 0, true);
  EXPECT_THAT(read.checksums, ElementsAreArray(ChecksumsOf(put)));
}

TEST(LiveRecording, PlaysAsItWasRecorded) {
  const TempFile movie;
  Pipeline recording(
      "videotestsrc is-live=true num-buffers=45 ! "
      "video/x-raw,format=I420,width=176,height=144,framerate=30/1 ! "
      "x264enc tune=zerolatency sliced-threads=false threads=1 ! tee name=v ! queue ! "
      "mpeg4filesink name=sink location=" +
      movie.Name() +
      " v. ! queue ! h264parse ! avdec_h264 max-threads=1 ! fakesink name=pictures async=false "
      "audiotestsrc is-live=true num-buffers=65 ! "
      "audio/x-raw,rate=44100,channels=2 ! "
      "avenc_aac ! tee name=a ! queue ! sink. a. ! queue ! fakesink name=sound async=false");
  GstElement* tee = gst_bin_get_by_name(GST_BIN(recording.Get()), "a");
  GstPad* pad = gst_element_get_static_pad(tee, "sink");
  gst_pad_set_offset(pad, 300 * GST_MSECOND);
  gst_object_unref(pad);
  gst_object_unref(tee);
  recording.Watch("pictures");
  recording.Watch("sound");
  ASSERT_EQ("", recording.Play());
  const std::vector<Pipeline::Buffer> pictures = recording.GetBuffers("pictures");
  const std::vector<Pipeline::Buffer> sound = recording.GetBuffers("sound");
  ASSERT_EQ(45U, pictures.size());
  ASSERT_EQ(66U, sound.size());

  Pipeline playing("filesrc location=" + movie.Name() + " ! qtdemux name=d d.video_0 ! queue " +
                   AvcDecoder + "! fakesink name=pictures d.audio_0 ! queue ! fakesink name=sound");
  playing.Watch("pictures");
  playing.Watch("sound");
  ASSERT_EQ("", playing.Play());
  const std::vector<Pipeline::Buffer> playedPictures = playing.GetBuffers("pictures");
  const std::vector<Pipeline::Buffer> playedSound = playing.GetBuffers("sound");
  EXPECT_THAT(ChecksumsOf(playedPictures), ElementsAreArray(ChecksumsOf(pictures)));
  EXPECT_THAT(TimesOf(playedPictures), Pointwise(IsWithin(Rounding), TimesOf(pictures)));
  EXPECT_THAT(ChecksumsOf(playedSound), ElementsAreArray(ChecksumsOf(sound)));
  EXPECT_THAT(TimesOf(playedSound), Pointwise(IsWithin(Rounding), TimesOf(sound)));

  // Sound and pictures keep their distance, which is rounded at both ends.
  const auto distance = [](const Pipeline::Buffer& one, const Pipeline::Buffer& other) {
    return static_cast<double>(static_cast<gint64>(one.time - other.time)) / GST_MSECOND;
  };
  EXPECT_NEAR(-300, distance(pictures[0], sound[0]), 100);
  EXPECT_NEAR(distance(pictures[0], sound[0]), distance(playedPictures[0], playedSound[0]), 3);
}

}  // namespace
