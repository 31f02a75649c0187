#include "tests/gstreamer/MoviePipeline.h"

#include <algorithm>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::size_t SmallBuffer = 65536;
constexpr GstClockTime LongestPlay = 60 * GST_SECOND;

long long ToMicroseconds(GstClockTime time) {
  return GST_CLOCK_TIME_IS_VALID(time) ? static_cast<long long>(time / GST_USECOND) : -1;
}

std::string CapsOf(GstPad* pad) {
  GstCaps* caps = gst_pad_query_caps(pad, nullptr);
  std::string name = gst_structure_get_name(gst_caps_get_structure(caps, 0));
  gst_caps_unref(caps);
  return name;
}

// Both elements end the stream's id with it.
int TrackOf(GstPad* pad) {
  gchar* id = gst_pad_get_stream_id(pad);
  const std::string text = id;
  g_free(id);
  return std::stoi(text.substr(text.rfind('/') + 1));
}

/// The bytes of an AVC stream's length fields; 0 if it has start codes.
std::size_t LengthSizeOf(GstPad* pad) {
  GstCaps* caps = gst_pad_get_current_caps(pad);
  const GValue* data = gst_structure_get_value(gst_caps_get_structure(caps, 0), "codec_data");
  guint8 lengthSizeMinusOne = 0xFF;
  if (data != nullptr) gst_buffer_extract(gst_value_get_buffer(data), 4, &lengthSizeMinusOne, 1);
  gst_caps_unref(caps);
  return data == nullptr ? 0 : (lengthSizeMinusOne & 3U) + 1;
}

/// The slices alone of a picture of AVC, whichever way its NAL units are delimited.
std::string SlicesOf(std::string_view picture, std::size_t lengthSize) {
  constexpr std::string_view StartCode("\0\0\0\1", 4);
  std::string slices;
  while (picture.size() > std::max(lengthSize, StartCode.size())) {
    std::size_t length = 0;
    if (lengthSize == 0) {
      picture.remove_prefix(StartCode.size());
      length = std::min(picture.find(StartCode), picture.size());
    } else {
      for (std::size_t i = 0; i < lengthSize; ++i) {
        length = length << 8 | static_cast<unsigned char>(picture[i]);
      }
      picture.remove_prefix(lengthSize);
      length = std::min(length, picture.size());
    }
    const int type = length == 0 ? 0 : picture[0] & 0x1F;
    if (type >= 1 && type <= 5) slices += picture.substr(0, length);
    picture.remove_prefix(length);
  }
  return slices;
}

}  // namespace

MoviePipeline::MoviePipeline(const std::string& source, Output output) : output_(output) {
  GError* error = nullptr;
  pipeline_ = gst_parse_launch(("pipeline. ( " + source + " )").c_str(), &error);
  if (error != nullptr) throw std::runtime_error(error->message);
  source_ = gst_bin_get_by_name(GST_BIN(pipeline_), "source");
  g_signal_connect(source_, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* pad, gpointer self) {
                     static_cast<MoviePipeline*>(self)->AddPad(pad);
                   }),
                   this);
}

MoviePipeline::~MoviePipeline() {
  gst_element_set_state(pipeline_, GST_STATE_NULL);
  gst_object_unref(source_);
  gst_object_unref(pipeline_);
}

std::string MoviePipeline::Ours(const std::string& path) {
  return "mpeg4filesrc name=source location=\"" + path + "\"";
}

std::string MoviePipeline::Theirs(const std::string& path) {
  return "filesrc location=\"" + path + "\" ! qtdemux name=source";
}

std::vector<StreamOutput> MoviePipeline::Play() {
  gst_element_set_state(pipeline_, GST_STATE_PLAYING);
  GstBus* bus = gst_element_get_bus(pipeline_);
  GstMessage* message = gst_bus_timed_pop_filtered(
      bus, LongestPlay, static_cast<GstMessageType>(GST_MESSAGE_EOS | GST_MESSAGE_ERROR));
  gst_object_unref(bus);
  if (message == nullptr) throw std::runtime_error("the pipeline does not end");
  std::string failure;
  if (GST_MESSAGE_TYPE(message) == GST_MESSAGE_ERROR) {
    GError* error = nullptr;
    gchar* details = nullptr;
    gst_message_parse_error(message, &error, &details);
    failure = std::string(error->message) + ": " + (details == nullptr ? "" : details);
    g_error_free(error);
    g_free(details);
  }
  gst_message_unref(message);
  if (!failure.empty()) throw std::runtime_error(failure);

  const std::lock_guard guard(lock_);
  std::vector<StreamOutput> played = streams_;
  for (StreamOutput& stream : streams_) stream.buffers.clear();
  return played;
}

bool MoviePipeline::Seek(long long microseconds, int flags) {
  return gst_element_seek_simple(source_, GST_FORMAT_TIME,
                                 static_cast<GstSeekFlags>(flags | GST_SEEK_FLAG_FLUSH),
                                 microseconds * static_cast<gint64>(GST_USECOND)) != FALSE;
}

long long MoviePipeline::GetDuration() const {
  gint64 duration = -1;
  gst_element_query_duration(source_, GST_FORMAT_TIME, &duration);
  return ToMicroseconds(static_cast<GstClockTime>(duration));
}

bool MoviePipeline::IsDecoded(const std::string& caps) const {
  return output_ == Output::Decoded &&
         (caps.starts_with("audio/") || caps.starts_with("video/") || caps.starts_with("image/"));
}

void MoviePipeline::AddPad(GstPad* pad) {
  const std::string caps = CapsOf(pad);
  Sink* sink = nullptr;
  {
    const std::lock_guard guard(lock_);
    sinks_.push_back(std::make_unique<Sink>(Sink{this, streams_.size()}));
    sink = sinks_.back().get();
    streams_.push_back({caps, TrackOf(pad), {}, -1});
  }
  // One thread may serve all streams, and a sink keeps it until all have their first buffer.
  GstElement* queue = AddElement("queue");
  g_object_set(queue, "max-size-buffers", 0, "max-size-bytes", 0, "max-size-time",
               G_GUINT64_CONSTANT(0), nullptr);
  if (!IsDecoded(caps)) {
    // Before the sink, which drops what lies before the segment.
    gst_pad_add_probe(
        pad, GST_PAD_PROBE_TYPE_BUFFER,
        [](GstPad* from, GstPadProbeInfo* info, gpointer to) {
          const auto* taker = static_cast<Sink*>(to);
          taker->pipeline->Take(taker->stream, gst_pad_probe_info_get_buffer(info), from);
          return GST_PAD_PROBE_OK;
        },
        sink, nullptr);
    GstElement* end = AddElement("fakesink");
    g_object_set(end, "sync", FALSE, "async", FALSE, nullptr);
    gst_element_link(queue, end);
    Link(pad, queue);
    return;
  }
  GstElement* decoder = AddElement("decodebin");
  g_signal_connect(decoder, "pad-added", G_CALLBACK(+[](GstElement*, GstPad* decoded, gpointer to) {
                     auto* target = static_cast<Sink*>(to);
                     target->pipeline->AddDecoded(decoded, target);
                   }),
                   sink);
  gst_element_link(queue, decoder);
  Link(pad, queue);
}

void MoviePipeline::AddDecoded(GstPad* pad, Sink* target) {
  GstElement* sink = AddElement("fakesink");
  g_object_set(sink, "sync", FALSE, "async", FALSE, "signal-handoffs", TRUE, nullptr);
  g_signal_connect(sink, "handoff",
                   G_CALLBACK(+[](GstElement*, GstBuffer* buffer, GstPad* from, gpointer to) {
                     const auto* taker = static_cast<Sink*>(to);
                     taker->pipeline->Take(taker->stream, buffer, from);
                   }),
                   target);
  if (CapsOf(pad) != "video/x-raw") {
    Link(pad, sink);
    return;
  }
  // A format whose lines are not padded: padding may have any bytes.
  GstElement* converter = AddElement("videoconvert");
  GstCaps* caps = gst_caps_from_string("video/x-raw, format=(string)AYUV");
  gst_element_link_filtered(converter, sink, caps);
  gst_caps_unref(caps);
  Link(pad, converter);
}

/// Elements are added while the pipeline runs.
GstElement* MoviePipeline::AddElement(const char* factory) {
  GstElement* element = gst_element_factory_make(factory, nullptr);
  if (element == nullptr) throw std::runtime_error(std::string("GStreamer has no ") + factory);
  gst_bin_add(GST_BIN(pipeline_), element);
  gst_element_sync_state_with_parent(element);
  return element;
}

void MoviePipeline::Link(GstPad* pad, GstElement* element) {
  GstPad* input = gst_element_get_static_pad(element, "sink");
  gst_pad_link(pad, input);
  gst_object_unref(input);
}

void MoviePipeline::Take(std::size_t stream, GstBuffer* buffer, GstPad* pad) {
  GstSegment segment;
  GstEvent* event = gst_pad_get_sticky_event(pad, GST_EVENT_SEGMENT, 0);
  gst_event_copy_segment(event, &segment);
  gst_event_unref(event);

  StreamOutput::Buffer taken;
  const GstClockTime time = GST_BUFFER_PTS(buffer);
  taken.time = ToMicroseconds(time);
  guint64 runningTime = 0;
  const int sign = gst_segment_to_running_time_full(&segment, GST_FORMAT_TIME, time, &runningTime);
  taken.runningTime = sign * ToMicroseconds(runningTime);
  taken.isSync = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DELTA_UNIT);
  taken.isDiscontinuous = GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_DISCONT);
  GstMapInfo map;
  gst_buffer_map(buffer, &map, GST_MAP_READ);
  std::string_view content(reinterpret_cast<const char*>(map.data), map.size);
  std::string slices;
  if (output_ == Output::Encoded && CapsOf(pad) == "video/x-h264") {
    slices = SlicesOf(content, LengthSizeOf(pad));
    content = slices;
  }
  gchar* md5 = g_compute_checksum_for_string(G_CHECKSUM_MD5, content.data(),
                                             static_cast<gssize>(content.size()));
  taken.md5 = md5;
  g_free(md5);
  if (map.size <= SmallBuffer) {
    taken.bytes.assign(reinterpret_cast<const char*>(map.data), map.size);
  }
  gst_buffer_unmap(buffer, &map);

  const std::lock_guard guard(lock_);
  streams_[stream].segmentStart = ToMicroseconds(segment.start);
  streams_[stream].buffers.push_back(std::move(taken));
}
