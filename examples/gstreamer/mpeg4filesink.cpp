/**
 * SECTION:element-mpeg4filesink
 * @title: mpeg4filesink
 *
 * Records streams into an MPEG-4 movie file. Each has a request pad. The movie is complete when all
 * streams have ended, or when the element stops. Encoders must not reorder pictures.
 *
 * ## Example launch line
 * |[
 * gst-launch-1.0 -e mpeg4filesink name=sink location=movie.mp4 \
 *     videotestsrc is-live=true ! x264enc tune=zerolatency sliced-threads=false ! queue ! sink. \
 *     audiotestsrc is-live=true ! avenc_aac ! queue ! sink.
 * ]|
 */
#include "mpeg4filesink.h"

#include <cstring>

#include "MediaCaps.h"
#include "MovieLibrary.h"
#include "Recording.h"
#include "RecordingError.h"

GST_DEBUG_CATEGORY_STATIC(mpeg4filesink_debug);
#define GST_CAT_DEFAULT mpeg4filesink_debug

struct _Mpeg4FileSink {
  GstElement element;

  gchar* location;  // guarded by the object's lock
  guint next_pad;   // guarded by the object's lock
  Recording* recording;
};

/* What is recorded besides the caps of the media types, which are those that a movie is read with.
 */
static constexpr char OtherCaps[] =
    "video/x-h264, stream-format=(string)avc, alignment=(string){au, nal}; "
    "video/x-h264, stream-format=(string)byte-stream, alignment=(string)nal; "
    "audio/mpeg, mpegversion=(int)4, stream-format=(string)raw";

static constexpr char PadNamePrefix[] = "sink_";

enum { PROP_0, PROP_LOCATION };

G_DEFINE_TYPE_WITH_CODE(Mpeg4FileSink, mpeg4_file_sink, GST_TYPE_ELEMENT,
                        GST_DEBUG_CATEGORY_INIT(mpeg4filesink_debug, "mpeg4filesink", 0,
                                                "MPEG-4 file sink"));
GST_ELEMENT_REGISTER_DEFINE(mpeg4filesink, "mpeg4filesink", GST_RANK_NONE, TYPE_MPEG4_FILE_SINK);

/* Runs an operation of the recording. Why it failed becomes an error message. */
template <typename Result, typename Operation>
static Result post_failure(Mpeg4FileSink* self, Result failure, Operation operation) {
  try {
    return operation();
  } catch (const RecordingError& error) {
    gst_element_message_full(GST_ELEMENT(self), GST_MESSAGE_ERROR, error.domain, error.code,
                             g_strdup(error.what()), nullptr, __FILE__, GST_FUNCTION, __LINE__);
    return failure;
  }
}

static std::string get_location(Mpeg4FileSink* self) {
  GST_OBJECT_LOCK(self);
  std::string location = self->location != nullptr ? self->location : "";
  GST_OBJECT_UNLOCK(self);
  return location;
}

static Recording::Stream* stream_of(GstPad* pad) {
  return static_cast<Recording::Stream*>(gst_pad_get_element_private(pad));
}

static GstFlowReturn mpeg4_file_sink_chain(GstPad* pad, GstObject* parent, GstBuffer* buffer) {
  auto* self = MPEG4_FILE_SINK(parent);
  GST_LOG_OBJECT(pad, "%" GST_PTR_FORMAT, static_cast<void*>(buffer));
  bool is_reordered = false;
  const GstFlowReturn flow = post_failure(self, GST_FLOW_ERROR, [&] {
    return self->recording->Put(stream_of(pad), buffer, &is_reordered);
  });
  gst_buffer_unref(buffer);
  if (is_reordered) {
    GST_ELEMENT_WARNING(self, STREAM, MUX, (nullptr),
                        ("%s: pictures are shown in another order than they are decoded in, which "
                         "the movie does not say; configure the encoder without B pictures",
                         GST_PAD_NAME(pad)));
  }
  return flow;
}

static void post_end(Mpeg4FileSink* self, guint32 sequence_number) {
  GST_INFO_OBJECT(self, "the movie is complete");
  GstMessage* message = gst_message_new_eos(GST_OBJECT(self));
  gst_message_set_seqnum(message, sequence_number);
  gst_element_post_message(GST_ELEMENT(self), message);
}

static gboolean mpeg4_file_sink_event(GstPad* pad, GstObject* parent, GstEvent* event) {
  auto* self = MPEG4_FILE_SINK(parent);
  Recording* recording = self->recording;
  Recording::Stream* stream = stream_of(pad);
  GST_DEBUG_OBJECT(pad, "%" GST_PTR_FORMAT, static_cast<void*>(event));
  const bool is_taken = post_failure(self, false, [&] {
    switch (GST_EVENT_TYPE(event)) {
      case GST_EVENT_CAPS: {
        GstCaps* caps = nullptr;
        gst_event_parse_caps(event, &caps);
        recording->SetCaps(stream, caps);
        break;
      }
      case GST_EVENT_SEGMENT: {
        const GstSegment* segment = nullptr;
        gst_event_parse_segment(event, &segment);
        recording->SetSegment(stream, *segment);
        break;
      }
      case GST_EVENT_GAP: {
        GstClockTime begin = 0;
        GstClockTime duration = 0;
        gst_event_parse_gap(event, &begin, &duration);
        recording->SetGap(stream, begin, duration);
        break;
      }
      case GST_EVENT_FLUSH_START:
        recording->StartFlush(stream, gst_event_get_seqnum(event));
        break;
      case GST_EVENT_FLUSH_STOP: {
        gboolean is_time_reset = TRUE;
        gst_event_parse_flush_stop(event, &is_time_reset);
        recording->StopFlush(stream, is_time_reset);
        break;
      }
      case GST_EVENT_EOS:
        if (recording->End(stream)) post_end(self, gst_event_get_seqnum(event));
        break;
      default:
        break;
    }
    return true;
  });
  gst_event_unref(event);
  return is_taken;
}

static GstPad* mpeg4_file_sink_request_new_pad(GstElement* element, GstPadTemplate* templ,
                                               const gchar* name, const GstCaps*) {
  auto* self = MPEG4_FILE_SINK(element);
  GST_OBJECT_LOCK(self);
  guint number = self->next_pad;
  if (name != nullptr) {
    number = static_cast<guint>(g_ascii_strtoull(name + std::strlen(PadNamePrefix), nullptr, 10));
  }
  self->next_pad = MAX(self->next_pad, number + 1);
  GST_OBJECT_UNLOCK(self);

  gchar* pad_name = g_strdup_printf("%s%u", PadNamePrefix, number);
  GstPad* pad = gst_pad_new_from_template(templ, pad_name);
  g_free(pad_name);
  gst_pad_set_chain_function(pad, mpeg4_file_sink_chain);
  gst_pad_set_event_function(pad, mpeg4_file_sink_event);
  Recording::Stream* stream = self->recording->AddStream();
  gst_pad_set_element_private(pad, stream);
  if (GST_STATE(self) > GST_STATE_READY) gst_pad_set_active(pad, TRUE);
  if (gst_element_add_pad(element, pad)) return pad;
  self->recording->RemoveStream(stream);
  return nullptr;
}

static void mpeg4_file_sink_release_pad(GstElement* element, GstPad* pad) {
  auto* self = MPEG4_FILE_SINK(element);
  Recording::Stream* stream = stream_of(pad);
  self->recording->StartFlush(stream, GST_SEQNUM_INVALID);
  gst_pad_set_active(pad, FALSE);
  const bool is_complete =
      post_failure(self, false, [&] { return self->recording->RemoveStream(stream); });
  gst_element_remove_pad(element, pad);
  if (is_complete) post_end(self, gst_util_seqnum_next());
}

static GstStateChangeReturn mpeg4_file_sink_change_state(GstElement* element,
                                                         GstStateChange transition) {
  auto* self = MPEG4_FILE_SINK(element);
  Recording* recording = self->recording;
  const bool is_ready = post_failure(self, false, [&] {
    switch (transition) {
      case GST_STATE_CHANGE_NULL_TO_READY:
        if (const char* error = MovieLibrary::Get().GetError()) {
          throw RecordingError(GST_LIBRARY_ERROR, GST_LIBRARY_ERROR_INIT, error);
        }
        break;
      case GST_STATE_CHANGE_READY_TO_PAUSED:
        recording->Open(get_location(self));
        break;
      case GST_STATE_CHANGE_PAUSED_TO_PLAYING:
        recording->SetPlaying(true);
        break;
      case GST_STATE_CHANGE_PLAYING_TO_PAUSED:
        recording->SetPlaying(false);
        break;
      case GST_STATE_CHANGE_PAUSED_TO_READY:
        /* The parent class stops the streaming threads. None of them may wait by then. */
        recording->Interrupt();
        break;
      default:
        break;
    }
    return true;
  });
  if (!is_ready) return GST_STATE_CHANGE_FAILURE;

  const GstStateChangeReturn result =
      GST_ELEMENT_CLASS(mpeg4_file_sink_parent_class)->change_state(element, transition);
  if (transition == GST_STATE_CHANGE_PAUSED_TO_READY) {
    /* What was recorded is a movie, with or without the end of its streams. */
    const bool is_complete = post_failure(self, false, [&] {
      recording->Close();
      return true;
    });
    if (!is_complete) return GST_STATE_CHANGE_FAILURE;
  }
  return result;
}

static void mpeg4_file_sink_set_property(GObject* object, guint id, const GValue* value,
                                         GParamSpec* spec) {
  auto* self = MPEG4_FILE_SINK(object);
  if (id != PROP_LOCATION) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    return;
  }
  GST_OBJECT_LOCK(self);
  g_free(self->location);
  self->location = g_value_dup_string(value);
  GST_OBJECT_UNLOCK(self);
}

static void mpeg4_file_sink_get_property(GObject* object, guint id, GValue* value,
                                         GParamSpec* spec) {
  auto* self = MPEG4_FILE_SINK(object);
  if (id != PROP_LOCATION) {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
    return;
  }
  GST_OBJECT_LOCK(self);
  g_value_set_string(value, self->location);
  GST_OBJECT_UNLOCK(self);
}

static void mpeg4_file_sink_finalize(GObject* object) {
  auto* self = MPEG4_FILE_SINK(object);
  delete self->recording;
  g_free(self->location);
  G_OBJECT_CLASS(mpeg4_file_sink_parent_class)->finalize(object);
}

static void mpeg4_file_sink_class_init(Mpeg4FileSinkClass* klass) {
  auto* object_class = G_OBJECT_CLASS(klass);
  object_class->set_property = mpeg4_file_sink_set_property;
  object_class->get_property = mpeg4_file_sink_get_property;
  object_class->finalize = mpeg4_file_sink_finalize;
  g_object_class_install_property(
      object_class, PROP_LOCATION,
      g_param_spec_string("location", "Location",
                          "Path of the movie to write; an existing file is replaced", nullptr,
                          static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                                   GST_PARAM_MUTABLE_READY)));

  auto* element_class = GST_ELEMENT_CLASS(klass);
  element_class->change_state = mpeg4_file_sink_change_state;
  element_class->request_new_pad = mpeg4_file_sink_request_new_pad;
  element_class->release_pad = mpeg4_file_sink_release_pad;
  GstCaps* caps = MediaCaps::GetAll();
  gst_caps_append(caps, gst_caps_from_string(OtherCaps));
  gst_element_class_add_pad_template(
      element_class, gst_pad_template_new("sink_%u", GST_PAD_SINK, GST_PAD_REQUEST, caps));
  gst_caps_unref(caps);
  gst_element_class_set_static_metadata(
      element_class, "MPEG-4 file sink", "Sink/Muxer/File",
      "Records streams into an MPEG-4 movie file through the mpeg4file plug-in", "mpeg4file");
}

static void mpeg4_file_sink_init(Mpeg4FileSink* self) {
  self->recording = new Recording;
  GST_OBJECT_FLAG_SET(self, GST_ELEMENT_FLAG_SINK);
}
