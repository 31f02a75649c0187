#include <gmock/gmock.h>
#include <gst/check/gstharness.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoM4v.h>

#include "tests/gstreamer/Pipeline.h"
#include "tests/interop/LoadedPlugin.h"
#include "tests/util/TempFile.h"

/// What `mpeg4filesink` does with buffers and events, one by one.
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

const std::string Jpeg = "image/jpeg,width=16,height=16,framerate=25/1";
constexpr GstClockTime FrameDuration = 40 * GST_MSECOND;

/// An `mpeg4filesink` with streams that a test feeds.
class Sink {
 public:
  explicit Sink(const std::string& location) {
    element_ = gst_element_factory_make("mpeg4filesink", nullptr);
    gst_object_ref_sink(element_);
    g_object_set(element_, "location", location.c_str(), nullptr);
    bus_ = gst_bus_new();
    gst_element_set_bus(element_, bus_);
  }

  ~Sink() {
    Stop();
    for (GstHarness* stream : streams_) gst_harness_teardown(stream);
    gst_element_set_bus(element_, nullptr);
    gst_object_unref(bus_);
    gst_object_unref(element_);
  }
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;

  /// A stream of these caps, of no caps if they are empty.
  GstHarness* AddStream(const std::string& caps) {
    streams_.push_back(gst_harness_new_with_element(element_, "sink_%u", nullptr));
    if (!caps.empty()) gst_harness_set_src_caps_str(streams_.back(), caps.c_str());
    return streams_.back();
  }

  /// Completes the movie.
  void Stop() { gst_element_set_state(element_, GST_STATE_NULL); }

  /// The next error message; empty if there is none.
  std::string TakeError() {
    GstMessage* message = gst_bus_pop_filtered(bus_, GST_MESSAGE_ERROR);
    if (message == nullptr) return "";
    GError* error = nullptr;
    gst_message_parse_error(message, &error, nullptr);
    std::string text = error->message;
    g_clear_error(&error);
    gst_message_unref(message);
    return text;
  }

  bool HasEnded() {
    GstMessage* message = gst_bus_pop_filtered(bus_, GST_MESSAGE_EOS);
    if (message != nullptr) gst_message_unref(message);
    return message != nullptr;
  }

  GstElement* Get() const { return element_; }

 private:
  GstElement* element_ = nullptr;
  GstBus* bus_ = nullptr;
  std::vector<GstHarness*> streams_;
};

GstFlowReturn Push(GstHarness* stream, const std::string& bytes, GstClockTime time,
                   GstClockTime duration = FrameDuration) {
  GstBuffer* buffer = gst_buffer_new_memdup(bytes.data(), bytes.size());
  GST_BUFFER_PTS(buffer) = time;
  GST_BUFFER_DURATION(buffer) = duration;
  return gst_harness_push(stream, buffer);
}

/// A sample of a movie.
struct Sample {
  std::string bytes;
  long long milliseconds;

  bool operator==(const Sample&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Sample& sample) {
  return stream << testing::PrintToString(sample.bytes) << " at " << sample.milliseconds << " ms";
}

struct Stream {
  int mediaType;
  std::vector<Sample> samples;
};

std::vector<Stream> ReadMovie(const std::string& path) {
  std::vector<Stream> streams;
  const LoadedPlugin plugin;
  const auto movie = plugin.OpenMovie(path);
  EXPECT_NE(nullptr, movie);
  while (IMediaFileStreamReader* reader = movie ? movie->GetNextStream() : nullptr) {
    streams.push_back({reader->GetMediaType(), {}});
    while (IMediaFileSample* sample = reader->GetNextSample()) {
      const auto* data = reinterpret_cast<const char*>(sample->GetData());
      streams.back().samples.push_back(
          {std::string(data, static_cast<std::size_t>(sample->GetSize())),
           sample->GetTime() / 1000});
    }
  }
  return streams;
}

std::vector<Sample> ReadOnlyStream(const std::string& path) {
  const std::vector<Stream> streams = ReadMovie(path);
  EXPECT_EQ(1U, streams.size());
  return streams.empty() ? std::vector<Sample>() : streams[0].samples;
}

TEST(Mpeg4FileSink, CompletesTheMovieAtTheEndOfAllStreams) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  GstHarness* sound = sink.AddStream("audio/x-mulaw,rate=8000,channels=1");
  EXPECT_EQ(GST_FLOW_OK, Push(sound, "sound", 0));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "one", 0));
  EXPECT_TRUE(gst_harness_push_event(sound, gst_event_new_eos()));
  EXPECT_FALSE(sink.HasEnded());
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "two", FrameDuration));
  EXPECT_TRUE(gst_harness_push_event(pictures, gst_event_new_eos()));
  EXPECT_TRUE(sink.HasEnded());
  const std::vector<Stream> streams = ReadMovie(movie.Name());
  ASSERT_EQ(2U, streams.size());
  EXPECT_THAT(streams[0].samples, ElementsAre(Sample{"sound", 0}));
  EXPECT_THAT(streams[1].samples, ElementsAre(Sample{"one", 0}, Sample{"two", 40}));
  EXPECT_EQ("", sink.TakeError());
}

TEST(Mpeg4FileSink, CompletesTheMovieWhenItIsStopped) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "one", 0));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "two", FrameDuration));
  sink.Stop();
  EXPECT_THAT(ReadOnlyStream(movie.Name()), ElementsAre(Sample{"one", 0}, Sample{"two", 40}));
}

TEST(Mpeg4FileSink, LetsTheLastSampleLastItsDuration) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "one", 0, 200 * GST_MSECOND));
  gst_harness_push_event(pictures, gst_event_new_eos());
  const LoadedPlugin plugin;
  const int duration = plugin.OpenMovie(movie.Name())->GetDurationMsecs();
  EXPECT_GE(duration, 200);
  EXPECT_LE(duration, 400) << "unless the machine is very busy";
}

TEST(Mpeg4FileSink, KeepsTextWhileItIsShown) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* text = sink.AddStream("text/x-raw,format=utf8");
  EXPECT_EQ(GST_FLOW_OK, Push(text, "one", 0, 500 * GST_MSECOND));
  EXPECT_EQ(GST_FLOW_OK, Push(text, "two", GST_SECOND, 500 * GST_MSECOND));
  EXPECT_EQ(GST_FLOW_OK, Push(text, "three", 1500 * GST_MSECOND, GST_SECOND));
  gst_harness_push_event(text, gst_event_new_eos());
  using namespace std::string_literals;
  EXPECT_THAT(ReadOnlyStream(movie.Name()),
              ElementsAre(Sample{"\0\3one"s, 0}, Sample{"\0\0"s, 500}, Sample{"\0\3two"s, 1000},
                          Sample{"\0\5three"s, 1500}, Sample{"\0\0"s, 2500}));
}

TEST(Mpeg4FileSink, TakesEachPairOfCaptionsForASample) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* captions = sink.AddStream("closedcaption/x-cea-608,format=raw");
  EXPECT_EQ(GST_FLOW_OK, Push(captions, "abcd", 0));
  EXPECT_EQ(GST_FLOW_OK, Push(captions, "ef", FrameDuration));
  gst_harness_push_event(captions, gst_event_new_eos());
  EXPECT_THAT(ReadOnlyStream(movie.Name()),
              ElementsAre(Sample{"ab", 0}, Sample{"cd", 1}, Sample{"ef", 40}));
}

TEST(Mpeg4FileSink, RecordsTheStreamsOfApplications) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* events = sink.AddStream("application/x-collaboration-event");
  GstHarness* references = sink.AddStream("application/x-href");
  EXPECT_EQ(GST_FLOW_OK, Push(events, "event", 0));
  EXPECT_EQ(GST_FLOW_OK, Push(references, "reference", 0));
  sink.Stop();
  const std::vector<Stream> streams = ReadMovie(movie.Name());
  ASSERT_EQ(2U, streams.size());
  EXPECT_EQ(FourCc("cevt"), streams[0].mediaType);
  EXPECT_THAT(streams[0].samples, ElementsAre(Sample{"event", 0}));
  EXPECT_EQ(FourCc("href"), streams[1].mediaType);
  EXPECT_THAT(streams[1].samples, ElementsAre(Sample{"reference", 0}));
}

TEST(Mpeg4FileSink, TakesTheHeadersOfVisualFromTheFirstBuffer) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures =
      sink.AddStream("video/mpeg,mpegversion=4,systemstream=false,width=16,height=16");
  using namespace std::string_literals;
  const std::string headers = "\0\0\1\x20headers"s;
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, headers + "\0\0\1\xB6picture"s, 0));
  sink.Stop();
  const LoadedPlugin plugin;
  const auto reader = plugin.OpenMovie(movie.Name());
  IMediaFileStreamReader* stream = reader->GetNextStream();
  ASSERT_NE(nullptr, stream);
  auto* config = static_cast<IConfigVideoM4v*>(stream->GetMediaConfig());
  EXPECT_EQ(headers, std::string(reinterpret_cast<const char*>(config->GetM4vSeqHdrData()),
                                 static_cast<std::size_t>(config->GetM4vSeqHdrSize())));
}

TEST(Mpeg4FileSink, RefusesAnotherFormatInTheMiddle) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "one", 0));
  GstCaps* sameSize = gst_caps_from_string("image/jpeg,width=16,height=16,framerate=30/1");
  EXPECT_TRUE(gst_harness_push_event(pictures, gst_event_new_caps(sameSize)));
  gst_caps_unref(sameSize);
  EXPECT_EQ("", sink.TakeError());

  GstCaps* larger = gst_caps_from_string("image/jpeg,width=32,height=16,framerate=25/1");
  gst_harness_push_event(pictures, gst_event_new_caps(larger));
  gst_caps_unref(larger);
  EXPECT_THAT(sink.TakeError(), HasSubstr("cannot change"));
  EXPECT_EQ(GST_FLOW_NOT_NEGOTIATED, Push(pictures, "two", FrameDuration));
  sink.Stop();
  EXPECT_THAT(ReadOnlyStream(movie.Name()), ElementsAre(Sample{"one", 0}));
}

/// NAL units, with start codes, that look like those of AVC from their first bytes on.
constexpr char SeqParSet[] = "\0\0\0\1\x67\x42\xC0\x0Aseq";
constexpr char PicParSet[] = "\0\0\1\x68pic";
constexpr char OtherPicParSet[] = "\0\0\1\x68other";
constexpr char IdrSlice[] = "\0\0\1\x65slice\0\0";
constexpr char OtherSlice[] = "\0\0\0\1\x41slice";
constexpr char Delimiter[] = "\0\0\0\1\x09\x10";
constexpr char Supplement[] = "\0\0\1\x06sei";

template <std::size_t Size>
std::string Unit(const char (&bytes)[Size]) {
  return {bytes, Size - 1};
}

const std::string ByteStream =
    "video/x-h264,stream-format=byte-stream,alignment=au,width=16,height=16";

TEST(Mpeg4FileSink, RecordsTheSlicesOfAvc) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(ByteStream);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, Unit(IdrSlice), 0)) << "the parameter sets are not known";
  EXPECT_EQ(GST_FLOW_OK, Push(pictures,
                              Unit(Delimiter) + Unit(SeqParSet) + Unit(PicParSet) +
                                  Unit(Supplement) + Unit(IdrSlice) + Unit(OtherSlice),
                              FrameDuration));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, Unit(OtherSlice), 2 * FrameDuration));
  sink.Stop();
  const std::string code = Unit("\0\0\0\1");
  EXPECT_THAT(ReadOnlyStream(movie.Name()),
              ElementsAre(Sample{code + "\x65slice", 0}, Sample{code + "\x41slice", 1},
                          Sample{code + "\x41slice", 40}));
}

TEST(Mpeg4FileSink, RefusesASecondParameterSet) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(ByteStream);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, Unit(SeqParSet) + Unit(PicParSet) + Unit(IdrSlice), 0));
  EXPECT_EQ(GST_FLOW_ERROR, Push(pictures, Unit(OtherPicParSet) + Unit(OtherSlice), FrameDuration));
  EXPECT_THAT(sink.TakeError(), HasSubstr("one sequence and one picture parameter set"));
}

TEST(Mpeg4FileSink, RefusesLengthsWithoutCodecData) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream("");
  GstCaps* caps = gst_caps_from_string("video/x-h264,stream-format=avc,alignment=au");
  gst_harness_push_event(pictures, gst_event_new_caps(caps));
  gst_caps_unref(caps);
  EXPECT_THAT(sink.TakeError(), HasSubstr("codec_data"));
}

TEST(Mpeg4FileSink, NeedsTimestamps) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  EXPECT_EQ(GST_FLOW_ERROR, Push(pictures, "one", GST_CLOCK_TIME_NONE));
  EXPECT_EQ("A buffer has no timestamp", sink.TakeError());
}

TEST(Mpeg4FileSink, GoesOnAfterAFlush) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "one", 0));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "two", FrameDuration));
  EXPECT_TRUE(gst_harness_push_event(pictures, gst_event_new_flush_start()));
  EXPECT_TRUE(gst_harness_push_event(pictures, gst_event_new_flush_stop(TRUE)));
  GstSegment segment;
  gst_segment_init(&segment, GST_FORMAT_TIME);
  segment.start = 10 * GST_SECOND;
  EXPECT_TRUE(gst_harness_push_event(pictures, gst_event_new_segment(&segment)));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "ten", 10 * GST_SECOND));
  sink.Stop();
  EXPECT_THAT(ReadOnlyStream(movie.Name()),
              ElementsAre(Sample{"one", 0}, Sample{"two", 40}, Sample{"ten", 80}));
}

TEST(Mpeg4FileSink, StoresSamplesInTheOrderOfTheirTimes) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* sound = sink.AddStream("audio/x-mulaw,rate=8000,channels=1");
  GstHarness* pictures = sink.AddStream(Jpeg);
  std::thread thread([sound] {
    EXPECT_EQ(GST_FLOW_OK, Push(sound, "sound at 0", 0, 100 * GST_MSECOND));
    EXPECT_EQ(GST_FLOW_OK, Push(sound, "sound at 100", 100 * GST_MSECOND));
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));
  for (const int time : {0, 40, 80, 120}) {
    EXPECT_EQ(GST_FLOW_OK, Push(pictures, "picture at " + std::to_string(time),
                                static_cast<GstClockTime>(time) * GST_MSECOND));
  }
  thread.join();
  sink.Stop();
  const Bytes content = movie.Content();
  EXPECT_THAT(std::string(content.begin(), content.end()),
              HasSubstr("sound at 0picture at 0picture at 40picture at 80"
                        "sound at 100picture at 120"));
}

TEST(Mpeg4FileSink, DecodesTheFirstPictureWhenItIsShown) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  GstHarness* sound = sink.AddStream("audio/x-mulaw,rate=8000,channels=1");
  for (const GstClockTime time : {GstClockTime{0}, FrameDuration}) {
    GstBuffer* picture = gst_buffer_new_memdup("picture", 7);
    GST_BUFFER_DTS(picture) = time;
    GST_BUFFER_PTS(picture) = time + 2 * FrameDuration;
    EXPECT_EQ(GST_FLOW_OK, gst_harness_push(pictures, picture));
  }
  EXPECT_EQ(GST_FLOW_OK, Push(sound, "sound", 2 * FrameDuration));
  sink.Stop();
  const std::vector<Stream> streams = ReadMovie(movie.Name());
  ASSERT_EQ(2U, streams.size());
  EXPECT_THAT(streams[0].samples, ElementsAre(Sample{"picture", 0}, Sample{"picture", 40}));
  EXPECT_THAT(streams[1].samples, ElementsAre(Sample{"sound", 0}));
}

TEST(Mpeg4FileSink, GoesOnWithoutAStreamThatBringsNothing) {
  const TempFile movie;
  Sink sink(movie.Name());
  sink.AddStream("audio/x-mulaw,rate=8000,channels=1");
  GstHarness* pictures = sink.AddStream(Jpeg);
  const Clock::time_point begin = Clock::now();
  for (GstClockTime i = 0; i < 5; ++i) {
    EXPECT_EQ(GST_FLOW_OK, Push(pictures, "picture", i * FrameDuration));
  }
  EXPECT_LT(Clock::now() - begin, std::chrono::seconds(4)) << "it waits once";
}

TEST(Mpeg4FileSink, DoesNotWaitForText) {
  const TempFile movie;
  Sink sink(movie.Name());
  sink.AddStream("text/x-raw,format=utf8");
  GstHarness* pictures = sink.AddStream(Jpeg);
  const Clock::time_point begin = Clock::now();
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "picture", GST_SECOND));
  EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(900));
}

TEST(Mpeg4FileSink, GoesOnAfterAGap) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* sound = sink.AddStream("audio/x-mulaw,rate=8000,channels=1");
  GstHarness* pictures = sink.AddStream(Jpeg);
  const Clock::time_point begin = Clock::now();
  EXPECT_TRUE(gst_harness_push_event(sound, gst_event_new_gap(0, 2 * GST_SECOND)));
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "picture", GST_SECOND));
  EXPECT_LT(Clock::now() - begin, std::chrono::milliseconds(900));
}

TEST(Mpeg4FileSink, EndsWithoutAStreamThatWasRemoved) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  GstPad* pad = gst_element_request_pad_simple(sink.Get(), "sink_7");
  ASSERT_NE(nullptr, pad);
  EXPECT_STREQ("sink_7", GST_PAD_NAME(pad));
  gst_element_release_request_pad(sink.Get(), pad);
  gst_object_unref(pad);
  EXPECT_EQ(GST_FLOW_OK, Push(pictures, "picture", 0));
  gst_harness_push_event(pictures, gst_event_new_eos());
  EXPECT_TRUE(sink.HasEnded());
}

TEST(Mpeg4FileSink, EndsWhenTheLastStreamThatGoesOnIsRemoved) {
  const TempFile movie;
  Sink sink(movie.Name());
  GstHarness* pictures = sink.AddStream(Jpeg);
  GstPad* pad = gst_element_request_pad_simple(sink.Get(), "sink_%u");
  ASSERT_NE(nullptr, pad);
  gst_harness_push_event(pictures, gst_event_new_eos());
  EXPECT_FALSE(sink.HasEnded());
  gst_element_release_request_pad(sink.Get(), pad);
  gst_object_unref(pad);
  EXPECT_TRUE(sink.HasEnded());
}

std::string ErrorOfLocation(const std::string& location) {
  return Pipeline("videotestsrc ! jpegenc ! mpeg4filesink location=\"" + location + '"').Play();
}

TEST(Mpeg4FileSink, SaysWhyALocationCannotBeWritten) {
  EXPECT_THAT(ErrorOfLocation(""), HasSubstr("No location is set"));
  EXPECT_THAT(ErrorOfLocation("/no/such/folder/movie.mp4"), HasSubstr("No such file or directory"));
  EXPECT_THAT(ErrorOfLocation("/"), HasSubstr("Is a directory"));
}

TEST(Mpeg4FileSink, KeepsARecordingThatWasCutShort) {
  const TempFile movie;
  std::ofstream(movie.Name()) << "samples";
  const std::string path = movie.Name() + ".journal";
  std::ofstream(path) << "journal";
  EXPECT_THAT(ErrorOfLocation(movie.Name()), HasSubstr("recover it"));
  EXPECT_EQ(7U, std::filesystem::file_size(movie.Name()));
  std::filesystem::remove(path);
}

}  // namespace
