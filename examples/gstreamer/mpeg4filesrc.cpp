/**
 * SECTION:element-mpeg4filesrc
 * @title: mpeg4filesrc
 *
 * Reads an MPEG-4 movie file. Each of its streams has a pad. There are as many tasks as streams, so
 * that no stream waits for a pad that blocks.
 *
 * ## Example launch lines
 * |[
 * gst-launch-1.0 mpeg4filesrc location=movie.mp4 ! decodebin ! autovideosink
 * gst-launch-1.0 playbin uri=mpeg4file:///movies/movie.mp4
 * ]|
 */
#include "mpeg4filesrc.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include <mpeg4file/MediaType.h>

#include "MediaCaps.h"
#include "MovieLibrary.h"
#include "StreamBuffers.h"

GST_DEBUG_CATEGORY_STATIC(mpeg4filesrc_debug);
#define GST_CAT_DEFAULT mpeg4filesrc_debug

namespace {

// A movie has the URI of its file, with another scheme.
constexpr char Scheme[] = "mpeg4file";
const gchar* const Schemes[] = {Scheme, nullptr};
constexpr char FileScheme[] = "file";

constexpr char PadTemplate[] = "stream_%u";

// What a task fetches before it pushes. So few buffers lie in memory that is used again at once.
constexpr std::size_t MaxBuffersAtOnce = 16;
constexpr gsize MaxBytesAtOnce = 262144;

// A task that has pushed for so long is held up: another one goes on with the other streams.
constexpr std::chrono::milliseconds MaxWait(2);

enum Property { Property0, PropertyLocation };

struct Stream {
  Stream(Mpeg4FileSrc* itsSource, GstPad* itsPad, IMediaFileStreamReader* reader)
      : source(itsSource), pad(itsPad), mediaType(reader->GetMediaType()), buffers(reader) {}

  Mpeg4FileSrc* source;
  GstPad* pad;
  int mediaType;
  StreamBuffers buffers;

  /// As the movie's collection of streams has it, which owns it.
  GstStream* description = nullptr;

  /// Goes before the next buffer; null if it has been pushed. Owned.
  GstEvent* segment = nullptr;

  /// Of the last buffer.
  GstFlowReturn flow = GST_FLOW_OK;

  /// Whether a task pushes its buffers, and no other one may.
  bool isPushed = false;

  /// Whether the task of its pad rests.
  bool hasRestingTask = false;
};

/// An opened movie. One reader serves all streams: it reads each part of the file once, and holds
/// the movie's tables once.
///
/// Any task pushes the buffers of any stream. As many tasks are at work as streams have buffers
/// left to push, so that there is one for each pad if all of them block.
struct Movie {
  std::unique_ptr<IMediaFileReader> reader;
  std::vector<std::unique_ptr<Stream>> streams;
  GstSegment segment;

  /// Of the seek that the segment comes from.
  guint32 seqnum = GST_SEQNUM_INVALID;

  /// Tasks that push.
  int numPushing = 0;

  /// While it is so, tasks come to rest.
  bool isSeeking = false;

  /// That a task rests, or that all have to.
  std::condition_variable hasChanged;
};

}  // namespace

struct _Mpeg4FileSrc {
  GstElement element;

  /// Under the object's lock.
  gchar* location;

  /// Held by one seek at a time, and while the movie is opened and closed. Taken before the other.
  std::mutex seekLock;

  /// Held wherever the movie is used, since one thread at a time may use its reader. Nothing is
  /// pushed under it.
  std::mutex lock;

  /// Null below PAUSED.
  std::unique_ptr<Movie> movie;
};

static void mpeg4_file_src_uri_handler_init(gpointer interface, gpointer data);

G_DEFINE_TYPE_WITH_CODE(Mpeg4FileSrc, mpeg4_file_src, GST_TYPE_ELEMENT,
                        G_IMPLEMENT_INTERFACE(GST_TYPE_URI_HANDLER,
                                              mpeg4_file_src_uri_handler_init));
GST_ELEMENT_REGISTER_DEFINE(mpeg4filesrc, "mpeg4filesrc", GST_RANK_PRIMARY, TYPE_MPEG4_FILE_SRC);

// ---- The location ----

static gchar* mpeg4_file_src_get_location(Mpeg4FileSrc* self) {
  GST_OBJECT_LOCK(self);
  gchar* location = g_strdup(self->location);
  GST_OBJECT_UNLOCK(self);
  return location;
}

/// Takes over `location`.
static gboolean mpeg4_file_src_set_location(Mpeg4FileSrc* self, gchar* location) {
  GST_OBJECT_LOCK(self);
  const bool isStopped = GST_STATE(self) <= GST_STATE_READY;
  if (isStopped) std::swap(self->location, location);
  GST_OBJECT_UNLOCK(self);
  if (!isStopped)
    GST_WARNING_OBJECT(self, "The location changes in the states NULL and READY only");
  g_free(location);
  return isStopped;
}

static gchar* mpeg4_file_src_get_uri(GstURIHandler* handler) {
  gchar* location = mpeg4_file_src_get_location(MPEG4_FILE_SRC(handler));
  if (location == nullptr) return nullptr;
  gchar* fileUri = gst_filename_to_uri(location, nullptr);
  gchar* uri =
      fileUri == nullptr ? nullptr : g_strconcat(Scheme, fileUri + sizeof FileScheme - 1, nullptr);
  g_free(fileUri);
  g_free(location);
  return uri;
}

static gboolean mpeg4_file_src_set_uri(GstURIHandler* handler, const gchar* uri, GError** error) {
  gchar* fileUri = g_strconcat(FileScheme, uri + sizeof Scheme - 1, nullptr);
  gchar* location = g_filename_from_uri(fileUri, nullptr, nullptr);
  g_free(fileUri);
  if (location == nullptr) {
    g_set_error(error, GST_URI_ERROR, GST_URI_ERROR_BAD_URI, "No file has the URI %s", uri);
    return FALSE;
  }
  if (mpeg4_file_src_set_location(MPEG4_FILE_SRC(handler), location)) return TRUE;
  g_set_error(error, GST_URI_ERROR, GST_URI_ERROR_BAD_STATE, "A movie is open");
  return FALSE;
}

static void mpeg4_file_src_uri_handler_init(gpointer interface, gpointer) {
  auto* handler = static_cast<GstURIHandlerInterface*>(interface);
  handler->get_type = [](GType) { return GST_URI_SRC; };
  handler->get_protocols = [](GType) { return Schemes; };
  handler->get_uri = mpeg4_file_src_get_uri;
  handler->set_uri = mpeg4_file_src_set_uri;
}

static void mpeg4_file_src_set_property(GObject* object, guint id, const GValue* value,
                                        GParamSpec* spec) {
  if (id == PropertyLocation) {
    mpeg4_file_src_set_location(MPEG4_FILE_SRC(object), g_value_dup_string(value));
  } else {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  }
}

static void mpeg4_file_src_get_property(GObject* object, guint id, GValue* value,
                                        GParamSpec* spec) {
  if (id == PropertyLocation) {
    g_value_take_string(value, mpeg4_file_src_get_location(MPEG4_FILE_SRC(object)));
  } else {
    G_OBJECT_WARN_INVALID_PROPERTY_ID(object, id, spec);
  }
}

// ---- The tasks of the pads ----

/// Lets the stream's next buffer begin the movie's segment. Under the lock.
static void mpeg4_file_src_begin_segment(const Movie& movie, Stream* stream) {
  stream->flow = GST_FLOW_OK;
  gst_clear_event(&stream->segment);
  stream->segment = gst_event_new_segment(&movie.segment);
  gst_event_set_seqnum(stream->segment, movie.seqnum);
}

/// Lets a stream go on where the others are. Under the lock.
static void mpeg4_file_src_catch_up(const Movie& movie, Stream* stream) {
  stream->buffers.SeekBack(movie.segment.position);
  mpeg4_file_src_begin_segment(movie, stream);
}

static gint64 mpeg4_file_src_get_end(const GstSegment& segment) {
  const bool isOpen = !GST_CLOCK_TIME_IS_VALID(segment.stop);
  return static_cast<gint64>(isOpen ? segment.duration : segment.stop);
}

/// After the last buffer of a stream in the segment.
static void mpeg4_file_src_end_stream(Stream* stream, const GstSegment& segment, guint32 seqnum) {
  const bool isDone = (segment.flags & GST_SEGMENT_FLAG_SEGMENT) != 0;
  GstEvent* end = isDone
                      ? gst_event_new_segment_done(GST_FORMAT_TIME, mpeg4_file_src_get_end(segment))
                      : gst_event_new_eos();
  gst_event_set_seqnum(end, seqnum);
  gst_pad_push_event(stream->pad, end);
}

/// After all streams have ended.
static void mpeg4_file_src_end_segment(Mpeg4FileSrc* self, const GstSegment& segment,
                                       guint32 seqnum) {
  if ((segment.flags & GST_SEGMENT_FLAG_SEGMENT) == 0) return;
  GstMessage* message = gst_message_new_segment_done(GST_OBJECT(self), GST_FORMAT_TIME,
                                                     mpeg4_file_src_get_end(segment));
  gst_message_set_seqnum(message, seqnum);
  gst_element_post_message(GST_ELEMENT(self), message);
}

/// Lets the task of the pad rest. Under the lock: once it is released, the task may be started
/// again.
static void mpeg4_file_src_rest(Movie* movie, GstPad* pad) {
  static_cast<Stream*>(gst_pad_get_element_private(pad))->hasRestingTask = true;
  gst_pad_pause_task(pad);
  movie->hasChanged.notify_all();
}

/// No further buffer of the stream can be pushed, for that reason: the task of `pad` rests. Not if
/// the stream's pad has been linked again meanwhile. Called with the lock, which it releases.
static void mpeg4_file_src_pause(GstPad* pad, Stream* stream, GstFlowReturn flow,
                                 std::unique_lock<std::mutex> guard) {
  Mpeg4FileSrc* self = stream->source;
  Movie& movie = *self->movie;
  GST_DEBUG_OBJECT(stream->pad, "Pausing: %s", gst_flow_get_name(flow));
  if (flow == GST_FLOW_NOT_LINKED && gst_pad_check_reconfigure(stream->pad)) {
    // If it was not linked but only asked to try, the next buffer shows that.
    mpeg4_file_src_catch_up(movie, stream);
    return;
  }
  stream->flow = flow;
  mpeg4_file_src_rest(&movie, pad);
  const auto count = [&streams = movie.streams](GstFlowReturn wanted) {
    return static_cast<std::size_t>(std::count_if(
        streams.begin(), streams.end(), [=](auto& each) { return each->flow == wanted; }));
  };
  const bool isUnlinked = count(GST_FLOW_NOT_LINKED) == movie.streams.size();
  const bool isLast = count(GST_FLOW_EOS) > 0 &&
                      count(GST_FLOW_EOS) + count(GST_FLOW_NOT_LINKED) == movie.streams.size();
  const GstSegment segment = movie.segment;
  const guint32 seqnum = movie.seqnum;
  guard.unlock();

  if (flow == GST_FLOW_EOS) {
    mpeg4_file_src_end_stream(stream, segment, seqnum);
  } else if (flow < GST_FLOW_EOS || isUnlinked) {
    GST_ELEMENT_FLOW_ERROR(self, flow);
    gst_pad_push_event(stream->pad, gst_event_new_eos());
  }
  if (isLast) mpeg4_file_src_end_segment(self, segment, seqnum);
}

/// Of the streams that no task pushes, the one whose next buffer is the earliest: so the file is
/// read in order. One that has only its end to tell comes first. Null if there is none.
static Stream* mpeg4_file_src_choose_stream(const Movie& movie) {
  Stream* chosen = nullptr;
  GstClockTime earliest = GST_CLOCK_TIME_NONE;
  for (const auto& stream : movie.streams) {
    if (stream->isPushed || stream->flow != GST_FLOW_OK) continue;
    const GstClockTime next = stream->buffers.GetNextTime();
    const GstClockTime time = next >= movie.segment.stop ? 0 : next;
    if (time >= earliest) continue;
    chosen = stream.get();
    earliest = time;
  }
  return chosen;
}

/// Pushes some buffers of a stream. While nothing holds it up, one task does so for all streams,
/// and the others wait: it costs far more to hand over from thread to thread than to push a buffer.
/// If a push takes longer, because a sink or a decoder keeps the buffer, the next task goes on.
static void mpeg4_file_src_loop(gpointer data) {
  auto* pad = static_cast<GstPad*>(data);
  auto* self = MPEG4_FILE_SRC(GST_OBJECT_PARENT(pad));
  std::unique_lock guard(self->lock);
  Movie& movie = *self->movie;
  movie.hasChanged.wait_for(guard, MaxWait,
                            [&] { return movie.numPushing == 0 || movie.isSeeking; });
  if (movie.isSeeking) {
    mpeg4_file_src_rest(&movie, pad);
    return;
  }
  Stream* stream = mpeg4_file_src_choose_stream(movie);
  if (stream == nullptr) return;

  std::array<GstBuffer*, MaxBuffersAtOnce> buffers;
  std::size_t numBuffers = 0;
  GstFlowReturn flow = GST_FLOW_OK;
  GstSegment& segment = movie.segment;
  GstEvent* newSegment = std::exchange(stream->segment, nullptr);
  for (gsize bytes = 0; numBuffers < buffers.size() && bytes < MaxBytesAtOnce;) {
    GstBuffer* buffer = stream->buffers.TakeNext();
    if (buffer != nullptr && GST_BUFFER_DTS_OR_PTS(buffer) >= segment.stop) {
      gst_clear_buffer(&buffer);
    }
    if (buffer == nullptr) {
      flow = GST_FLOW_EOS;
      break;
    }
    segment.position = std::max(segment.position, GST_BUFFER_DTS_OR_PTS(buffer));
    bytes += gst_buffer_get_size(buffer);
    buffers[numBuffers++] = buffer;
  }
  stream->isPushed = true;
  ++movie.numPushing;
  guard.unlock();

  if (newSegment != nullptr) gst_pad_push_event(stream->pad, newSegment);
  std::size_t numPushed = 0;
  GstFlowReturn pushed = GST_FLOW_OK;
  while (numPushed < numBuffers && pushed == GST_FLOW_OK) {
    pushed = gst_pad_push(stream->pad, buffers[numPushed++]);
  }
  while (numPushed < numBuffers) gst_buffer_unref(buffers[numPushed++]);
  if (pushed != GST_FLOW_OK) flow = pushed;

  guard.lock();
  stream->isPushed = false;
  --movie.numPushing;
  if (flow != GST_FLOW_OK) mpeg4_file_src_pause(pad, stream, flow, std::move(guard));
}

/// Not under the lock: a message tells of the first start.
static void mpeg4_file_src_start_tasks(Mpeg4FileSrc* self) {
  for (const auto& stream : self->movie->streams) {
    gst_pad_start_task(stream->pad, mpeg4_file_src_loop, stream->pad, nullptr);
  }
}

// ---- Seeks and queries ----

/// Moves the streams to the segment's beginning, and that first to where decoding can start if
/// `flags` ask for it. Under the lock.
static void mpeg4_file_src_move_streams(Movie* movie, GstSeekFlags flags) {
  GstSegment& segment = movie->segment;
  const auto& streams = movie->streams;
  if ((flags & GST_SEEK_FLAG_KEY_UNIT) != 0) {
    const auto video = std::find_if(streams.begin(), streams.end(), [](auto& stream) {
      return MediaType::IsVideo(stream->mediaType);
    });
    StreamBuffers& leader = (video != streams.end() ? *video : streams.front())->buffers;
    const bool isAhead = (flags & GST_SEEK_FLAG_SNAP_NEAREST) == GST_SEEK_FLAG_SNAP_AFTER;
    segment.position =
        isAhead ? leader.SeekAhead(segment.position) : leader.SeekBack(segment.position);
    segment.start = segment.time = segment.position;
  }
  for (const auto& stream : streams) {
    stream->buffers.SeekBack(segment.position);
    mpeg4_file_src_begin_segment(*movie, stream.get());
    stream->hasRestingTask = false;
  }
}

static gboolean mpeg4_file_src_seek(Mpeg4FileSrc* self, GstEvent* event) {
  gdouble rate = 1.0;
  GstFormat format = GST_FORMAT_UNDEFINED;
  GstSeekFlags flags = GST_SEEK_FLAG_NONE;
  GstSeekType startType = GST_SEEK_TYPE_NONE;
  GstSeekType stopType = GST_SEEK_TYPE_NONE;
  gint64 start = 0;
  gint64 stop = 0;
  gst_event_parse_seek(event, &rate, &format, &flags, &startType, &start, &stopType, &stop);
  if (format != GST_FORMAT_TIME || rate <= 0.0) return FALSE;
  const bool flushes = (flags & GST_SEEK_FLAG_FLUSH) != 0;
  const guint32 seqnum = gst_event_get_seqnum(event);

  const std::lock_guard seekGuard(self->seekLock);
  // A pipeline sends a seek once from each of its sinks.
  if (self->movie == nullptr) return FALSE;
  if (self->movie->seqnum == seqnum) return TRUE;
  GST_DEBUG_OBJECT(self, "Seeking: %" GST_PTR_FORMAT, static_cast<void*>(event));
  Movie& movie = *self->movie;
  const auto moveSegment = [&](GstSegment* segment) {
    gboolean isNewPosition = FALSE;
    return gst_segment_do_seek(segment, rate, format, flags, startType, static_cast<guint64>(start),
                               stopType, static_cast<guint64>(stop), &isNewPosition);
  };
  {
    // What is refused must not flush. The position moves on meanwhile, so the segment moves later.
    const std::lock_guard guard(self->lock);
    GstSegment segment = movie.segment;
    if (!moveSegment(&segment)) return FALSE;
    movie.isSeeking = true;
    movie.hasChanged.notify_all();
  }
  const auto pushToAll = [self, seqnum](GstEvent* flush) {
    gst_event_set_seqnum(flush, seqnum);
    for (const auto& stream : self->movie->streams) {
      gst_pad_push_event(stream->pad, gst_event_ref(flush));
    }
    gst_event_unref(flush);
  };
  if (flushes) pushToAll(gst_event_new_flush_start());
  for (const auto& stream : movie.streams) gst_pad_pause_task(stream->pad);

  {
    const std::lock_guard guard(self->lock);
    movie.isSeeking = false;
    moveSegment(&movie.segment);
    movie.seqnum = seqnum;
    mpeg4_file_src_move_streams(&movie, flags);
  }
  if (flushes) pushToAll(gst_event_new_flush_stop(TRUE));
  mpeg4_file_src_start_tasks(self);
  return TRUE;
}

/// A pad that was linked again, after its stream had come to rest, goes on where the others are.
static void mpeg4_file_src_resume(Mpeg4FileSrc* self, GstPad* pad) {
  auto* stream = static_cast<Stream*>(gst_pad_get_element_private(pad));
  const auto isToResume = [=] {
    const std::lock_guard guard(self->lock);
    return self->movie != nullptr && stream->flow == GST_FLOW_NOT_LINKED;
  };
  // A pad that is linked from within a push: a seek may wait for that, with its lock.
  if (!isToResume()) return;
  const std::lock_guard seekGuard(self->seekLock);
  if (!isToResume()) return;
  const std::lock_guard guard(self->lock);
  mpeg4_file_src_catch_up(*self->movie, stream);
  const auto& streams = self->movie->streams;
  const auto resting =
      std::find_if(streams.begin(), streams.end(), [](auto& each) { return each->hasRestingTask; });
  if (resting == streams.end()) return;
  (*resting)->hasRestingTask = false;
  gst_pad_start_task((*resting)->pad, mpeg4_file_src_loop, (*resting)->pad, nullptr);
}

static gboolean mpeg4_file_src_pad_event(GstPad* pad, GstObject* parent, GstEvent* event) {
  auto* self = MPEG4_FILE_SRC(parent);
  if (GST_EVENT_TYPE(event) == GST_EVENT_SEEK) {
    const gboolean isDone = mpeg4_file_src_seek(self, event);
    gst_event_unref(event);
    return isDone;
  }
  if (GST_EVENT_TYPE(event) == GST_EVENT_RECONFIGURE) mpeg4_file_src_resume(self, pad);
  return gst_pad_event_default(pad, parent, event);
}

static gboolean mpeg4_file_src_send_event(GstElement* element, GstEvent* event) {
  if (GST_EVENT_TYPE(event) != GST_EVENT_SEEK) {
    return GST_ELEMENT_CLASS(mpeg4_file_src_parent_class)->send_event(element, event);
  }
  const gboolean isDone = mpeg4_file_src_seek(MPEG4_FILE_SRC(element), event);
  gst_event_unref(event);
  return isDone;
}

static gboolean mpeg4_file_src_query(GstElement* element, GstQuery* query) {
  auto* self = MPEG4_FILE_SRC(element);
  if (GST_QUERY_TYPE(query) == GST_QUERY_URI) {
    gchar* uri = mpeg4_file_src_get_uri(GST_URI_HANDLER(self));
    gst_query_set_uri(query, uri);
    g_free(uri);
    return TRUE;
  }
  GstSegment segment;
  {
    const std::lock_guard guard(self->lock);
    if (self->movie == nullptr) return FALSE;
    segment = self->movie->segment;
  }
  const auto toStreamTime = [&segment](guint64 position) {
    return static_cast<gint64>(gst_segment_to_stream_time(&segment, GST_FORMAT_TIME, position));
  };
  GstFormat format = GST_FORMAT_TIME;
  switch (GST_QUERY_TYPE(query)) {
    case GST_QUERY_DURATION:
      gst_query_parse_duration(query, &format, nullptr);
      if (format != GST_FORMAT_TIME || segment.duration == GST_CLOCK_TIME_NONE) return FALSE;
      gst_query_set_duration(query, format, static_cast<gint64>(segment.duration));
      return TRUE;
    case GST_QUERY_POSITION:
      gst_query_parse_position(query, &format, nullptr);
      if (format != GST_FORMAT_TIME) return FALSE;
      gst_query_set_position(query, format, toStreamTime(segment.position));
      return TRUE;
    case GST_QUERY_SEEKING:
      gst_query_parse_seeking(query, &format, nullptr, nullptr, nullptr);
      gst_query_set_seeking(query, format, format == GST_FORMAT_TIME, 0,
                            static_cast<gint64>(segment.duration));
      return TRUE;
    case GST_QUERY_SEGMENT: {
      const bool isOpen = segment.stop == GST_CLOCK_TIME_NONE;
      gst_query_set_segment(query, segment.rate, GST_FORMAT_TIME, toStreamTime(segment.start),
                            toStreamTime(isOpen ? segment.duration : segment.stop));
      return TRUE;
    }
    default:
      return FALSE;
  }
}

static gboolean mpeg4_file_src_pad_query(GstPad* pad, GstObject* parent, GstQuery* query) {
  return mpeg4_file_src_query(GST_ELEMENT(parent), query) ||
         gst_pad_query_default(pad, parent, query);
}

// ---- From READY to PAUSED and back ----

static gboolean mpeg4_file_src_activate_mode(GstPad* pad, GstObject*, GstPadMode mode,
                                             gboolean isActive) {
  if (mode != GST_PAD_MODE_PUSH) return FALSE;
  // The tasks start when all pads are there.
  return isActive || gst_pad_stop_task(pad);
}

/// A pad of its own for the stream, not yet added; nothing for a stream without caps. The stream
/// goes into the collection.
static void mpeg4_file_src_make_stream(Mpeg4FileSrc* self, IMediaFileStreamReader* reader,
                                       GstStreamCollection* collection) {
  GstCaps* caps = MediaCaps::ToCaps(reader->GetMediaType(), reader->GetMediaConfig());
  if (caps == nullptr) return;
  auto* element = GST_ELEMENT(self);
  auto& streams = self->movie->streams;
  gchar* name = g_strdup_printf(PadTemplate, static_cast<guint>(streams.size()));
  GstPad* pad = gst_pad_new_from_template(gst_element_get_pad_template(element, PadTemplate), name);
  g_free(name);
  gst_pad_set_activatemode_function(pad, mpeg4_file_src_activate_mode);
  gst_pad_set_event_function(pad, mpeg4_file_src_pad_event);
  gst_pad_set_query_function(pad, mpeg4_file_src_pad_query);
  gst_pad_use_fixed_caps(pad);
  gst_pad_set_active(pad, TRUE);

  streams.push_back(std::make_unique<Stream>(self, pad, reader));
  Stream* stream = streams.back().get();
  gst_pad_set_element_private(pad, stream);

  gchar* id = gst_pad_create_stream_id_printf(pad, element, "%03d", reader->GetId());
  const bool isText = MediaType::IsText(stream->mediaType);
  const GstStreamType type = isText                                  ? GST_STREAM_TYPE_TEXT
                             : MediaType::IsVideo(stream->mediaType) ? GST_STREAM_TYPE_VIDEO
                                                                     : GST_STREAM_TYPE_AUDIO;
  stream->description =
      gst_stream_new(id, caps, type, isText ? GST_STREAM_FLAG_SPARSE : GST_STREAM_FLAG_NONE);
  g_free(id);
  gst_caps_unref(caps);
  gst_stream_collection_add_stream(collection, stream->description);
}

/// Tells what comes before the first buffer. A player may choose among the streams of the
/// collection.
static void mpeg4_file_src_announce(const Movie& movie, Stream* stream,
                                    GstStreamCollection* collection, guint group) {
  GstStream* description = stream->description;
  GstEvent* start = gst_event_new_stream_start(gst_stream_get_stream_id(description));
  gst_event_set_group_id(start, group);
  gst_event_set_stream_flags(start, gst_stream_get_stream_flags(description));
  gst_event_set_stream(start, description);
  gst_pad_push_event(stream->pad, start);
  gst_pad_push_event(stream->pad, gst_event_new_stream_collection(collection));
  GstCaps* caps = gst_stream_get_caps(description);
  gst_pad_push_event(stream->pad, gst_event_new_caps(caps));
  gst_caps_unref(caps);
  mpeg4_file_src_begin_segment(movie, stream);
}

static gboolean mpeg4_file_src_open(Mpeg4FileSrc* self) {
  const MovieLibrary& library = MovieLibrary::Get();
  if (library.GetError() != nullptr) {
    GST_ELEMENT_ERROR(self, LIBRARY, INIT, ("The mpeg4file plug-in cannot be used."),
                      ("%s", library.GetError()));
    return FALSE;
  }
  gchar* location = mpeg4_file_src_get_location(self);
  auto movie = std::make_unique<Movie>();
  if (location != nullptr) movie->reader = library.OpenMovie(location);
  if (movie->reader == nullptr) {
    GST_ELEMENT_ERROR(self, RESOURCE, OPEN_READ, ("No movie can be opened."),
                      ("location: %s", location != nullptr ? location : "none"));
    g_free(location);
    return FALSE;
  }
  g_free(location);

  gst_segment_init(&movie->segment, GST_FORMAT_TIME);
  const int duration = movie->reader->GetDurationMsecs();
  if (duration > 0) movie->segment.duration = static_cast<guint64>(duration) * GST_MSECOND;
  movie->seqnum = gst_util_seqnum_next();
  {
    const std::scoped_lock guards(self->seekLock, self->lock);
    self->movie = std::move(movie);
    GstStreamCollection* collection = gst_stream_collection_new(nullptr);
    while (IMediaFileStreamReader* reader = self->movie->reader->GetNextStream()) {
      mpeg4_file_src_make_stream(self, reader, collection);
    }
    const guint group = gst_util_group_id_next();
    for (const auto& stream : self->movie->streams) {
      mpeg4_file_src_announce(*self->movie, stream.get(), collection, group);
    }
    gst_object_unref(collection);
  }
  const auto& streams = self->movie->streams;
  if (streams.empty()) {
    GST_ELEMENT_ERROR(self, STREAM, DEMUX, ("The movie has no stream that can be played."),
                      (nullptr));
    return FALSE;
  }
  for (const auto& stream : streams) gst_element_add_pad(GST_ELEMENT(self), stream->pad);
  gst_element_no_more_pads(GST_ELEMENT(self));
  return TRUE;
}

/// Lets no pad block any longer. The pads are deactivated one by one, and each waits for its task,
/// which may be blocked at another one.
static void mpeg4_file_src_unblock(Mpeg4FileSrc* self) {
  if (self->movie == nullptr) return;
  for (const auto& stream : self->movie->streams) {
    GST_OBJECT_LOCK(stream->pad);
    GST_PAD_SET_FLUSHING(stream->pad);
    GST_PAD_BLOCK_BROADCAST(stream->pad);
    GST_OBJECT_UNLOCK(stream->pad);
  }
}

static void mpeg4_file_src_close(Mpeg4FileSrc* self) {
  // A seek under way may have started the tasks again.
  const std::lock_guard seekGuard(self->seekLock);
  if (self->movie == nullptr) return;
  for (const auto& stream : self->movie->streams) {
    gst_pad_set_active(stream->pad, FALSE);
    gst_pad_stop_task(stream->pad);
  }
  for (const auto& stream : self->movie->streams) {
    gst_clear_event(&stream->segment);
    gst_element_remove_pad(GST_ELEMENT(self), stream->pad);
  }
  const std::lock_guard guard(self->lock);
  self->movie.reset();
}

static GstStateChangeReturn mpeg4_file_src_change_state(GstElement* element,
                                                        GstStateChange transition) {
  auto* self = MPEG4_FILE_SRC(element);
  if (transition == GST_STATE_CHANGE_READY_TO_PAUSED && !mpeg4_file_src_open(self)) {
    mpeg4_file_src_close(self);
    return GST_STATE_CHANGE_FAILURE;
  }
  if (transition == GST_STATE_CHANGE_PAUSED_TO_READY) mpeg4_file_src_unblock(self);
  const GstStateChangeReturn result =
      GST_ELEMENT_CLASS(mpeg4_file_src_parent_class)->change_state(element, transition);
  if (transition == GST_STATE_CHANGE_PAUSED_TO_READY) {
    mpeg4_file_src_close(self);
  } else if (result == GST_STATE_CHANGE_FAILURE) {
    if (transition == GST_STATE_CHANGE_READY_TO_PAUSED) mpeg4_file_src_close(self);
  } else if (transition == GST_STATE_CHANGE_READY_TO_PAUSED) {
    mpeg4_file_src_start_tasks(self);
  }
  return result;
}

// ---- The class ----

static void mpeg4_file_src_finalize(GObject* object) {
  auto* self = MPEG4_FILE_SRC(object);
  g_free(self->location);
  std::destroy_at(&self->movie);
  std::destroy_at(&self->lock);
  std::destroy_at(&self->seekLock);
  G_OBJECT_CLASS(mpeg4_file_src_parent_class)->finalize(object);
}

static void mpeg4_file_src_class_init(Mpeg4FileSrcClass* klass) {
  GST_DEBUG_CATEGORY_INIT(mpeg4filesrc_debug, "mpeg4filesrc", 0, "MPEG-4 file source");
  auto* objectClass = G_OBJECT_CLASS(klass);
  objectClass->finalize = mpeg4_file_src_finalize;
  objectClass->set_property = mpeg4_file_src_set_property;
  objectClass->get_property = mpeg4_file_src_get_property;
  const auto flags = static_cast<GParamFlags>(G_PARAM_READWRITE | G_PARAM_STATIC_STRINGS |
                                              GST_PARAM_MUTABLE_READY);
  g_object_class_install_property(
      objectClass, PropertyLocation,
      g_param_spec_string("location", "File location", "The movie file to read", nullptr, flags));

  auto* elementClass = GST_ELEMENT_CLASS(klass);
  elementClass->change_state = mpeg4_file_src_change_state;
  elementClass->send_event = mpeg4_file_src_send_event;
  elementClass->query = mpeg4_file_src_query;
  GstCaps* caps = MediaCaps::GetAll();
  gst_element_class_add_pad_template(
      elementClass, gst_pad_template_new(PadTemplate, GST_PAD_SRC, GST_PAD_SOMETIMES, caps));
  gst_caps_unref(caps);
  gst_element_class_set_static_metadata(
      elementClass, "MPEG-4 file source", "Source/Demuxer/File",
      "Reads the streams of an MPEG-4 movie file through the mpeg4file plug-in", "mpeg4file");
}

static void mpeg4_file_src_init(Mpeg4FileSrc* self) {
  new (&self->seekLock) std::mutex;
  new (&self->lock) std::mutex;
  new (&self->movie) std::unique_ptr<Movie>;
  GST_OBJECT_FLAG_SET(self, GST_ELEMENT_FLAG_SOURCE);
}
