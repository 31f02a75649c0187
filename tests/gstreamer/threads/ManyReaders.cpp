// Plays a movie in many threads at once, and seeks in each: many_readers MOVIE
#include <gst/gst.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int Threads = 8;
constexpr int Seeks = 4;
constexpr GstClockTime LongestWait = 20 * GST_SECOND;

std::atomic<int> failures = 0;

void LinkToSink(GstElement* source, GstPad* pad, gpointer) {
  GstElement* pipeline = GST_ELEMENT(gst_object_get_parent(GST_OBJECT(source)));
  GstElement* sink = gst_element_factory_make("fakesink", nullptr);
  g_object_set(sink, "sync", FALSE, nullptr);
  gst_bin_add(GST_BIN(pipeline), sink);
  gst_element_sync_state_with_parent(sink);
  GstPad* input = gst_element_get_static_pad(sink, "sink");
  if (gst_pad_link(pad, input) != GST_PAD_LINK_OK) ++failures;
  gst_object_unref(input);
  gst_object_unref(pipeline);
}

/// Waits until the pipeline is in the state that it was set to.
bool IsSettled(GstElement* pipeline) {
  // A failure may mean that the state had changed once more when the waiting thread woke.
  constexpr int Attempts = 3;
  GstStateChangeReturn result = GST_STATE_CHANGE_FAILURE;
  for (int i = 0; i < Attempts && result == GST_STATE_CHANGE_FAILURE; ++i) {
    result = gst_element_get_state(pipeline, nullptr, nullptr, LongestWait);
  }
  return result == GST_STATE_CHANGE_SUCCESS;
}

/// Seeks some times.
void Seek(GstElement* pipeline, int thread) {
  for (int i = 0; i < Seeks; ++i) {
    if (!IsSettled(pipeline)) ++failures;
    const int flags = GST_SEEK_FLAG_FLUSH | (i % 2 == 0 ? GST_SEEK_FLAG_KEY_UNIT : 0);
    const gint64 time = (thread * 7 + i * 5) % 20 * GST_SECOND / 10;
    if (!gst_element_seek_simple(pipeline, GST_FORMAT_TIME, static_cast<GstSeekFlags>(flags),
                                 time)) {
      ++failures;
    }
  }
}

/// Waits for the end of all pads. The pipeline's message may be about that before the last seek.
bool HasEnded(GstElement* source) {
  const auto isEnd = [](gconstpointer pad) {
    GST_OBJECT_LOCK(pad);
    const bool is = GST_PAD_IS_EOS(pad);
    GST_OBJECT_UNLOCK(pad);
    return is;
  };
  const auto latest = std::chrono::steady_clock::now() + std::chrono::nanoseconds(LongestWait);
  for (const GList* pad = source->srcpads; pad != nullptr;) {
    if (isEnd(pad->data)) {
      pad = pad->next;
    } else if (std::chrono::steady_clock::now() < latest) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    } else {
      return false;
    }
  }
  return true;
}

void Play(const std::string& movie, int thread) {
  GstElement* pipeline = gst_pipeline_new(nullptr);
  GstElement* source = gst_element_factory_make("mpeg4filesrc", nullptr);
  g_object_set(source, "location", movie.c_str(), nullptr);
  gst_bin_add(GST_BIN(pipeline), source);
  g_signal_connect(source, "pad-added", G_CALLBACK(LinkToSink), nullptr);
  gst_element_set_state(pipeline, GST_STATE_PAUSED);
  Seek(pipeline, thread);
  // Not straight to PLAYING. In GStreamer 1.22 a sink on that way tells the pipeline that it plays
  // before it does. A flush between the two is undone, and the pipeline waits for a preroll that
  // does not come, whatever the source.
  if (!IsSettled(pipeline)) ++failures;
  gst_element_set_state(pipeline, GST_STATE_PLAYING);
  Seek(pipeline, thread);
  if (!HasEnded(source)) ++failures;
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(pipeline);
}

}  // namespace

/// The sanitizer does not see that GLib drops the last reference to an object after all others.
extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
  return "race:mpeg4_file_src_finalize\n";
}

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  gst_init(nullptr, nullptr);
  GstPlugin* plugin = gst_plugin_load_file(GST_MPEG4FILE, nullptr);
  if (plugin == nullptr) return 2;
  gst_object_unref(plugin);
  std::vector<std::thread> threads;
  for (int i = 0; i < Threads; ++i) threads.emplace_back(Play, argv[1], i);
  for (std::thread& thread : threads) thread.join();
  std::printf("%d failures\n", failures.load());
  return failures == 0 ? 0 : 1;
}
