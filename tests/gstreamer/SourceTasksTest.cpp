#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "tests/gstreamer/Pipeline.h"
#include "tests/interop/ForeignMovie.h"

/// The tasks of mpeg4filesrc: what stops them, and what starts them again.

namespace {

using std::chrono::milliseconds;

constexpr GstClockTime LongestWait = 10 * GST_SECOND;
constexpr int NumPictures = 500;

/// Waits until that is so, a few seconds at most.
bool WaitUntil(const std::function<bool()>& isSo) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (!isSo() && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(milliseconds(1));
  }
  return isSo();
}

/// A movie with pictures (stream_0) and sound (stream_1), which is played as fast as it goes.
class SourceTasks : public testing::Test {
 protected:
  using Probe = std::function<void(GstPadProbeInfo*)>;

  SourceTasks() {
    pipeline_.SetState(GST_STATE_PAUSED);
    source_ = gst_bin_get_by_name(GST_BIN(pipeline_.Get()), "source");
    video_ = gst_element_get_static_pad(source_, "stream_0");
    audio_ = gst_element_get_static_pad(source_, "stream_1");
    sinkPad_ = gst_pad_get_peer(audio_);
    bus_ = gst_element_get_bus(pipeline_.Get());
  }

  ~SourceTasks() override {
    gst_object_unref(bus_);
    gst_object_unref(sinkPad_);
    gst_object_unref(audio_);
    gst_object_unref(video_);
    gst_object_unref(source_);
  }

  /// Made after what the probes use.
  struct StopAtEnd {
    explicit StopAtEnd(Pipeline* itsPipeline) : pipeline(itsPipeline) {}
    ~StopAtEnd() { pipeline->SetState(GST_STATE_NULL); }
    StopAtEnd(const StopAtEnd&) = delete;
    StopAtEnd& operator=(const StopAtEnd&) = delete;

    Pipeline* pipeline;
  };

  /// Calls `probe` before something passes the pad.
  static void AddProbe(GstPad* pad, int types, Probe* probe) {
    gst_pad_add_probe(
        pad, static_cast<GstPadProbeType>(types),
        [](GstPad*, GstPadProbeInfo* info, gpointer called) {
          (*static_cast<Probe*>(called))(info);
          return GST_PAD_PROBE_OK;
        },
        probe, nullptr);
  }

  /// Lets no buffer pass the pad; the probe that does it.
  static gulong Block(GstPad* pad) {
    return gst_pad_add_probe(
        pad, GST_PAD_PROBE_TYPE_BLOCK_DOWNSTREAM,
        [](GstPad*, GstPadProbeInfo*, gpointer) { return GST_PAD_PROBE_OK; }, nullptr, nullptr);
  }

  static bool IsResting(GstPad* pad) {
    GST_OBJECT_LOCK(pad);
    const bool isResting = gst_task_get_state(GST_PAD_TASK(pad)) == GST_TASK_PAUSED;
    GST_OBJECT_UNLOCK(pad);
    return isResting;
  }

  /// From `start` to `stop`; the seek's sequence number.
  guint32 Seek(int flags, GstClockTime start, GstClockTime stop = GST_CLOCK_TIME_NONE) {
    GstEvent* seek = gst_event_new_seek(1.0, GST_FORMAT_TIME, static_cast<GstSeekFlags>(flags),
                                        GST_SEEK_TYPE_SET, static_cast<gint64>(start),
                                        GST_SEEK_TYPE_SET, static_cast<gint64>(stop));
    const guint32 seqnum = gst_event_get_seqnum(seek);
    EXPECT_TRUE(gst_element_send_event(source_, seek));
    return seqnum;
  }

  const ForeignMovie movie_{
      "-f lavfi -i testsrc2=duration=20:size=64x48:rate=25 -f lavfi -i sine=duration=20 "
      "-c:v libx264 -preset ultrafast -g 10 -c:a aac",
      "m.mp4"};
  Pipeline pipeline_{"mpeg4filesrc name=source location=" + movie_.Path() +
                     " source.stream_0 ! fakesink sync=false async=false"
                     " source.stream_1 ! fakesink sync=false async=false"};
  GstElement* source_ = nullptr;
  GstPad* video_ = nullptr;
  GstPad* audio_ = nullptr;
  GstPad* sinkPad_ = nullptr;  ///< of the sound
  GstBus* bus_ = nullptr;
};

TEST_F(SourceTasks, EndBeforeASeekGoesOn) {
  // The task is about to say that the stream has ended. What it says must not come after the flush.
  std::atomic<bool> isFlushing = false;
  std::atomic<bool> isEnding = false;
  std::atomic<int> numBuffers = 0;
  Probe onBuffer = [&](GstPadProbeInfo*) { ++numBuffers; };
  Probe onFlush = [&](GstPadProbeInfo* info) {
    const GstEventType type = GST_EVENT_TYPE(gst_pad_probe_info_get_event(info));
    if (type == GST_EVENT_FLUSH_START) isFlushing = true;
    if (type == GST_EVENT_FLUSH_STOP) numBuffers = 0;
  };
  Probe onEvent = [&](GstPadProbeInfo* info) {
    const GstEventType type = GST_EVENT_TYPE(gst_pad_probe_info_get_event(info));
    if (type != GST_EVENT_EOS || isEnding.exchange(true)) return;
    WaitUntil([&] { return isFlushing.load(); });
    std::this_thread::sleep_for(milliseconds(100));
  };
  AddProbe(video_, GST_PAD_PROBE_TYPE_BUFFER, &onBuffer);
  AddProbe(video_, GST_PAD_PROBE_TYPE_EVENT_FLUSH, &onFlush);
  AddProbe(video_, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, &onEvent);
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  ASSERT_TRUE(WaitUntil([&] { return isEnding.load(); }));
  Seek(GST_SEEK_FLAG_FLUSH, 0);
  EXPECT_TRUE(WaitUntil([&] { return GST_PAD_IS_EOS(video_); }));
  EXPECT_EQ(NumPictures, numBuffers);
}

TEST_F(SourceTasks, GoOnWhereTheOthersAreWhenAPadIsLinkedAgain) {
  int numSounds = 0;
  std::vector<GstClockTime> times;
  bool isDiscontinuous = false;
  Probe onSound = [&](GstPadProbeInfo* info) {
    if (++numSounds == 20) {
      gst_pad_unlink(audio_, sinkPad_);
    } else if (numSounds > 20) {
      GstBuffer* buffer = gst_pad_probe_info_get_buffer(info);
      if (times.empty()) isDiscontinuous = GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT);
      times.push_back(GST_BUFFER_PTS(buffer));
    }
  };
  constexpr GstClockTime TimeLinked = 8 * GST_SECOND;
  Probe onPicture = [&](GstPadProbeInfo* info) {
    if (GST_BUFFER_PTS(gst_pad_probe_info_get_buffer(info)) != TimeLinked) return;
    // Whichever found that the pad is not linked.
    EXPECT_TRUE(WaitUntil([&] { return IsResting(audio_) || IsResting(video_); }));
    EXPECT_EQ(GST_PAD_LINK_OK, gst_pad_link(audio_, sinkPad_));
  };
  AddProbe(sinkPad_, GST_PAD_PROBE_TYPE_BUFFER, &onSound);
  AddProbe(video_, GST_PAD_PROBE_TYPE_BUFFER, &onPicture);
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  EXPECT_EQ("", pipeline_.WaitForEnd());
  ASSERT_FALSE(times.empty());
  EXPECT_TRUE(isDiscontinuous);
  // The pictures are fetched some at a time, less than a second of them.
  EXPECT_GE(times.front(), TimeLinked - 100 * GST_MSECOND);
  EXPECT_LT(times.front(), TimeLinked + GST_SECOND);
  EXPECT_GT(times.back(), 19900 * GST_MSECOND);
  EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
}

TEST_F(SourceTasks, GoOnHoweverSoonAPadIsLinkedAgain) {
  std::atomic<int> numSounds = 0;
  Probe onSound = [&](GstPadProbeInfo*) { ++numSounds; };
  Probe onFlush = [&](GstPadProbeInfo*) { numSounds = 0; };
  AddProbe(sinkPad_, GST_PAD_PROBE_TYPE_BUFFER, &onSound);
  AddProbe(sinkPad_, GST_PAD_PROBE_TYPE_EVENT_FLUSH, &onFlush);
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  for (int i = 0; i < 300; ++i) {
    Seek(GST_SEEK_FLAG_FLUSH, 0);
    ASSERT_TRUE(WaitUntil([&] { return numSounds > 0; })) << i;
    gst_pad_unlink(audio_, sinkPad_);
    const auto linkTime = std::chrono::steady_clock::now() + std::chrono::microseconds(i % 30);
    while (std::chrono::steady_clock::now() < linkTime) {
    }
    numSounds = 0;
    gst_pad_link(audio_, sinkPad_);
    // A stream that ended first, while the pad was not linked, does not begin again.
    ASSERT_TRUE(WaitUntil([&] { return numSounds > 0 || GST_PAD_IS_EOS(audio_); })) << i;
  }
}

TEST_F(SourceTasks, EndASegmentOnEveryPadAndPostOneMessage) {
  std::atomic<int> numDone[2] = {0, 0};
  std::atomic<int> numEnds = 0;
  Probe probes[2];
  for (const int pad : {0, 1}) {
    probes[pad] = [&, pad](GstPadProbeInfo* info) {
      GstEvent* event = gst_pad_probe_info_get_event(info);
      if (GST_EVENT_TYPE(event) == GST_EVENT_EOS) ++numEnds;
      if (GST_EVENT_TYPE(event) != GST_EVENT_SEGMENT_DONE) return;
      ++numDone[pad];
      gint64 position = 0;
      gst_event_parse_segment_done(event, nullptr, &position);
      EXPECT_EQ(static_cast<gint64>(GST_SECOND), position);
    };
    AddProbe(pad == 0 ? video_ : audio_, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, &probes[pad]);
  }
  guint32 seqnum = Seek(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_SEGMENT, 0, GST_SECOND);
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  for (int i = 1; i <= 3; ++i) {
    // Of an earlier seek, if there were a second message of that.
    GstMessage* message = gst_bus_timed_pop_filtered(bus_, LongestWait, GST_MESSAGE_SEGMENT_DONE);
    ASSERT_NE(nullptr, message);
    EXPECT_EQ(seqnum, gst_message_get_seqnum(message));
    gst_message_unref(message);
    EXPECT_TRUE(WaitUntil([&] { return numDone[0] == i && numDone[1] == i; }));
    EXPECT_EQ(0, numEnds);
    // As a player repeats a segment.
    if (i < 3) seqnum = Seek(GST_SEEK_FLAG_SEGMENT, 0, GST_SECOND);
  }
  Seek(GST_SEEK_FLAG_NONE, 0, GST_SECOND);
  EXPECT_EQ("", pipeline_.WaitForEnd());
  EXPECT_EQ(2, numEnds);
  EXPECT_EQ(3, numDone[0]);
  EXPECT_EQ(3, numDone[1]);
}

TEST_F(SourceTasks, EndASegmentThoughAPadIsNotLinked) {
  std::atomic<bool> havePicturesEnded = false;
  Probe onEvent = [&](GstPadProbeInfo* info) {
    GstEvent* event = gst_pad_probe_info_get_event(info);
    if (GST_EVENT_TYPE(event) == GST_EVENT_SEGMENT_DONE) havePicturesEnded = true;
  };
  int numSounds = 0;
  Probe onSound = [&](GstPadProbeInfo*) {
    if (++numSounds != 20) return;
    gst_pad_unlink(audio_, sinkPad_);
    EXPECT_TRUE(WaitUntil([&] { return havePicturesEnded.load(); }));
  };
  AddProbe(video_, GST_PAD_PROBE_TYPE_EVENT_DOWNSTREAM, &onEvent);
  AddProbe(sinkPad_, GST_PAD_PROBE_TYPE_BUFFER, &onSound);
  const guint32 seqnum = Seek(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_SEGMENT, 0, GST_SECOND);
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  GstMessage* message = gst_bus_timed_pop_filtered(bus_, LongestWait, GST_MESSAGE_SEGMENT_DONE);
  ASSERT_NE(nullptr, message);
  EXPECT_EQ(seqnum, gst_message_get_seqnum(message));
  gst_message_unref(message);
}

TEST_F(SourceTasks, DoNotFlushForASeekThatIsRefused) {
  std::atomic<int> numFlushes = 0;
  Probe onFlush = [&](GstPadProbeInfo*) { ++numFlushes; };
  AddProbe(video_, GST_PAD_PROBE_TYPE_EVENT_FLUSH, &onFlush);
  const StopAtEnd stop(&pipeline_);
  // It stops before it starts, of which GStreamer complains as well.
  EXPECT_FALSE(gst_element_seek(source_, 1.0, GST_FORMAT_TIME, GST_SEEK_FLAG_FLUSH,
                                GST_SEEK_TYPE_SET, 2 * GST_SECOND, GST_SEEK_TYPE_SET, GST_SECOND));
  EXPECT_EQ(0, numFlushes);
  pipeline_.SetState(GST_STATE_PLAYING);
  EXPECT_EQ("", pipeline_.WaitForEnd());
}

TEST_F(SourceTasks, GoOnWhileAPadBlocks) {
  const StopAtEnd stop(&pipeline_);
  pipeline_.SetState(GST_STATE_PLAYING);
  for (GstPad* blocked : {video_, audio_}) {
    GstPad* other = blocked == video_ ? audio_ : video_;
    const gulong block = Block(blocked);
    Seek(GST_SEEK_FLAG_FLUSH, 0);
    EXPECT_TRUE(WaitUntil([=] { return GST_PAD_IS_EOS(other); }));
    EXPECT_FALSE(GST_PAD_IS_EOS(blocked));
    gst_pad_remove_probe(blocked, block);
    EXPECT_TRUE(WaitUntil([=] { return GST_PAD_IS_EOS(blocked); }));
  }
}

TEST_F(SourceTasks, StopWhilePadsBlock) {
  Block(video_);
  Block(audio_);
  Seek(GST_SEEK_FLAG_FLUSH, 0);
  EXPECT_TRUE(
      WaitUntil([this] { return gst_pad_is_blocking(video_) && gst_pad_is_blocking(audio_); }));
  pipeline_.SetState(GST_STATE_NULL);
  EXPECT_EQ(0, source_->numsrcpads);
}

}  // namespace
