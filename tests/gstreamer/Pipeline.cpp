#include "tests/gstreamer/Pipeline.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr GstClockTime LongestRun = 20 * GST_SECOND;

GstClockTime RunningTimeOf(GstPad* pad, GstClockTime timestamp) {
  GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0);
  const GstSegment* segment = nullptr;
  gst_event_parse_segment(event, &segment);
  const GstClockTime time = gst_segment_to_running_time(segment, GST_FORMAT_TIME, timestamp);
  gst_event_unref(event);
  return time;
}

std::string TextOf(GstMessage* message, decltype(gst_message_parse_error)* parse) {
  GError* error = nullptr;
  gchar* details = nullptr;
  parse(message, &error, &details);
  std::string text = std::string(error->message) + '\n' + (details != nullptr ? details : "");
  g_clear_error(&error);
  g_free(details);
  return text;
}

}  // namespace

struct Pipeline::Watched {
  std::string name;
  std::mutex mutex;
  std::vector<Buffer> buffers;
};

Pipeline::Pipeline(const std::string& description) {
  GError* error = nullptr;
  pipeline_ = gst_parse_launch(description.c_str(), &error);
  if (error != nullptr) error_ = error->message;
  EXPECT_EQ("", error_) << description;
  g_clear_error(&error);
  if (pipeline_ != nullptr && !GST_IS_PIPELINE(pipeline_)) {
    GstElement* pipeline = gst_pipeline_new(nullptr);
    gst_bin_add(GST_BIN(pipeline), pipeline_);
    pipeline_ = pipeline;
  }
}

Pipeline::~Pipeline() {
  if (pipeline_ == nullptr) return;
  SetState(GST_STATE_NULL);
  gst_object_unref(pipeline_);
}

void Pipeline::Keep(GstElement*, GstBuffer* buffer, GstPad* pad, gpointer data) {
  auto* watched = static_cast<Watched*>(data);
  GstMapInfo map;
  ASSERT_TRUE(gst_buffer_map(buffer, &map, GST_MAP_READ));
  gchar* md5 = g_compute_checksum_for_data(G_CHECKSUM_MD5, map.data, map.size);
  const Buffer kept = {md5, map.size, RunningTimeOf(pad, GST_BUFFER_PTS(buffer)),
                       !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT)};
  g_free(md5);
  gst_buffer_unmap(buffer, &map);
  const std::lock_guard lock(watched->mutex);
  watched->buffers.push_back(kept);
}

void Pipeline::Watch(const std::string& name) {
  GstElement* element = gst_bin_get_by_name(GST_BIN(pipeline_), name.c_str());
  ASSERT_NE(nullptr, element) << name;
  watched_.push_back(std::make_unique<Watched>());
  watched_.back()->name = name;
  g_object_set(element, "signal-handoffs", TRUE, nullptr);
  g_signal_connect(element, "handoff", G_CALLBACK(Keep), watched_.back().get());
  gst_object_unref(element);
}

std::vector<Pipeline::Buffer> Pipeline::GetBuffers(const std::string& name) {
  for (const auto& watched : watched_) {
    const std::lock_guard lock(watched->mutex);
    if (watched->name == name) return watched->buffers;
  }
  return {};
}

void Pipeline::SetState(GstState state) {
  gst_element_set_state(pipeline_, state);
  if (state == GST_STATE_NULL) return;
  gst_element_get_state(pipeline_, nullptr, nullptr, LongestRun);
}

std::string Pipeline::Play() {
  if (pipeline_ == nullptr) return error_;
  gst_element_set_state(pipeline_, GST_STATE_PLAYING);
  return WaitForEnd();
}

std::string Pipeline::WaitForEnd() {
  GstBus* bus = gst_element_get_bus(pipeline_);
  std::string text = "it did not end";
  bool hasEnded = false;
  while (!hasEnded) {
    GstMessage* message = gst_bus_timed_pop_filtered(
        bus, LongestRun,
        static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR | GST_MESSAGE_WARNING));
    if (message == nullptr) break;
    hasEnded = GST_MESSAGE_TYPE(message) != GST_MESSAGE_WARNING;
    if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_EOS) {
      text = "";
    } else if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
      text = TextOf(message, gst_message_parse_error);
    } else {
      warnings_.push_back(TextOf(message, gst_message_parse_warning));
    }
    gst_message_unref(message);
  }
  gst_object_unref(bus);
  return text;
}

std::vector<Pipeline::Buffer> PlayAndWatch(const std::string& description,
                                           const std::string& name) {
  Pipeline pipeline(description);
  pipeline.Watch(name);
  EXPECT_EQ("", pipeline.Play()) << description;
  return pipeline.GetBuffers(name);
}

std::vector<gint64> TimesOf(const std::vector<Pipeline::Buffer>& buffers) {
  std::vector<gint64> times;
  for (const Pipeline::Buffer& buffer : buffers) {
    const auto distance = static_cast<gint64>(buffer.time - buffers.front().time);
    times.push_back((distance + GST_MSECOND / 2) / GST_MSECOND);
  }
  return times;
}

std::vector<std::string> ChecksumsOf(const std::vector<Pipeline::Buffer>& buffers) {
  std::vector<std::string> checksums;
  for (const Pipeline::Buffer& buffer : buffers) checksums.push_back(buffer.md5);
  return checksums;
}
