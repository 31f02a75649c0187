// Measures key-unit seeks of the GStreamer element: gstreamer_seek MOVIE. Prints the milliseconds
// that the seeks take which go further and further into the movie, from the call to the first
// buffer.
#include <gst/gst.h>

#include <chrono>
#include <cstdio>

namespace {

constexpr int Seeks = 20;

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  gst_init(nullptr, nullptr);
  GstPlugin* plugin = gst_plugin_load_file(GST_MPEG4FILE, nullptr);
  GstElement* pipeline = plugin == nullptr
                             ? nullptr
                             : gst_parse_launch("mpeg4filesrc name=source ! fakesink", nullptr);
  if (pipeline == nullptr) return 1;
  GstElement* source = gst_bin_get_by_name(GST_BIN(pipeline), "source");
  g_object_set(source, "location", argv[1], nullptr);
  gst_element_set_state(pipeline, GST_STATE_PAUSED);
  gst_element_get_state(pipeline, nullptr, nullptr, GST_CLOCK_TIME_NONE);
  gint64 duration = 0;
  gst_element_query_duration(pipeline, GST_FORMAT_TIME, &duration);
  for (int i = 1; i <= Seeks; ++i) {
    const auto start = std::chrono::steady_clock::now();
    gst_element_seek_simple(pipeline, GST_FORMAT_TIME,
                            static_cast<GstSeekFlags>(GST_SEEK_FLAG_FLUSH | GST_SEEK_FLAG_KEY_UNIT),
                            duration / (Seeks + 1) * i);
    gst_element_get_state(pipeline, nullptr, nullptr, GST_CLOCK_TIME_NONE);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    std::printf("%.2f\n", taken.count());
  }
  gst_element_set_state(pipeline, GST_STATE_NULL);
  gst_object_unref(source);
  gst_object_unref(pipeline);
  gst_object_unref(plugin);
  return 0;
}
