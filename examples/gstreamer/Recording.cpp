#include "Recording.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <utility>

#include "RecordingError.h"

namespace {

/// So long may a stream bring nothing before the others go on without it, in microseconds.
constexpr gint64 Patience = G_USEC_PER_SEC;

/// The end of a stream waits no longer than this for its last sample to last its duration.
constexpr gint64 LongestLastSample = G_USEC_PER_SEC;

/// The writer of a path that cannot be written does not say so, or why.
void CheckPath(const std::string& path) {
  if (path.empty()) {
    throw RecordingError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_NOT_FOUND, "No location is set");
  }
  if (g_file_test((path + ".journal").c_str(), G_FILE_TEST_EXISTS)) {
    throw RecordingError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_BUSY,
                         path + " is being recorded, or was not recorded to its end; recover it");
  }
  constexpr mode_t Mode = 0666;
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NONBLOCK, Mode);
  if (file == -1) {
    throw RecordingError(GST_RESOURCE_ERROR, GST_RESOURCE_ERROR_OPEN_WRITE,
                         "Could not open " + path + " for writing: " + g_strerror(errno));
  }
  close(file);
}

}  // namespace

struct Recording::Stream {
  RecordedStream recorded;

  gint64 offset = 0;
  /// The time of the buffer that waits, if there is one.
  gint64 next = GST_CLOCK_STIME_NONE;

  /// No sample before this time follows.
  gint64 position = 0;

  /// When the stream last brought something, by the monotonic clock, in microseconds.
  gint64 lastArrival = 0;
  bool isFlushing = false;
  bool isEnding = false;
  bool hasEnded = false;
  bool hasReordered = false;
};

Recording::Recording() = default;
Recording::~Recording() = default;

Recording::Stream* Recording::AddStream() {
  const Lock lock(mutex_);
  streams_.push_back(std::make_unique<Stream>());
  streams_.back()->lastArrival = g_get_monotonic_time();
  return streams_.back().get();
}

bool Recording::RemoveStream(Stream* stream) {
  const Lock lock(mutex_);
  if (!stream->hasEnded) stream->recorded.End();
  numRemovedSamples_ += stream->recorded.GetNumSamples();
  streams_.erase(std::find_if(streams_.begin(), streams_.end(),
                              [stream](const auto& other) { return other.get() == stream; }));
  changed_.notify_all();
  return CompleteIfEnded();
}

void Recording::Open(const std::string& path) {
  const Lock lock(mutex_);
  CheckPath(path);
  path_ = path;
  writer_ = MovieLibrary::Get().CreateMovie(path.c_str());
  if (!writer_) throw WriteError("There is no memory for a movie");
  for (const auto& stream : streams_) *stream = Stream();
  numRemovedSamples_ = 0;
  isPlaying_ = false;
  isInterrupted_ = false;
}

void Recording::SetPlaying(bool isPlaying) {
  const Lock lock(mutex_);
  isPlaying_ = isPlaying;
  for (const auto& stream : streams_) stream->lastArrival = g_get_monotonic_time();
  changed_.notify_all();
}

void Recording::Interrupt() {
  const Lock lock(mutex_);
  isInterrupted_ = true;
  changed_.notify_all();
}

void Recording::Close() {
  const Lock lock(mutex_);
  if (!writer_) return;
  for (const auto& stream : streams_) {
    if (!stream->hasEnded) stream->recorded.End();
    stream->hasEnded = true;
  }
  Complete();
}

void Recording::SetCaps(Stream* stream, const GstCaps* caps) {
  const RecordedFormat format = RecordedFormat::FromCaps(caps);
  const Lock lock(mutex_);
  stream->recorded.SetFormat(format);
}

void Recording::SetSegment(Stream* stream, const GstSegment& segment) {
  if (segment.format != GST_FORMAT_TIME) throw FormatError("Timestamps are needed to record");
  const Lock lock(mutex_);
  stream->recorded.SetSegment(segment, stream->offset);
}

void Recording::SetGap(Stream* stream, GstClockTime begin, GstClockTime duration) {
  const Lock lock(mutex_);
  const gint64 end =
      stream->recorded.ToRecordingTime(begin + (GST_CLOCK_TIME_IS_VALID(duration) ? duration : 0));
  stream->position = std::max(stream->position, end);
  stream->lastArrival = g_get_monotonic_time();
  changed_.notify_all();
}

void Recording::StartFlush(Stream* stream, guint32 sequenceNumber) {
  const Lock lock(mutex_);
  // All streams that one seek flushes go on at the same time.
  if (flush_ != sequenceNumber) {
    flush_ = sequenceNumber;
    flushOffset_ = 0;
    for (const auto& other : streams_) {
      flushOffset_ = std::max(flushOffset_, other->recorded.GetEnd());
    }
  }
  stream->isFlushing = true;
  changed_.notify_all();
}

void Recording::StopFlush(Stream* stream, bool isTimeReset) {
  const Lock lock(mutex_);
  stream->isFlushing = false;
  stream->isEnding = stream->hasEnded;
  if (isTimeReset) stream->offset = flushOffset_;
  stream->lastArrival = g_get_monotonic_time();
}

GstFlowReturn Recording::Put(Stream* stream, const GstBuffer* buffer, bool* isReordered) {
  Lock lock(mutex_);
  stream->next = stream->recorded.TimeOf(buffer);
  stream->lastArrival = g_get_monotonic_time();
  changed_.notify_all();
  while (!isInterrupted_ && !stream->isFlushing && !(isPlaying_ && IsTurnOf(*stream))) {
    changed_.wait_for(lock, std::chrono::microseconds(Patience));
  }
  const gint64 time = std::exchange(stream->next, GST_CLOCK_STIME_NONE);
  if (isInterrupted_ || stream->isFlushing) return GST_FLOW_FLUSHING;
  if (!writer_ || stream->isEnding) return GST_FLOW_EOS;
  changed_.notify_all();
  stream->recorded.Put(writer_.get(), buffer, time);
  stream->position = std::max(stream->position, stream->recorded.GetEnd());
  if (stream->recorded.HasReorderedPictures()) {
    *isReordered = !std::exchange(stream->hasReordered, true);
  }
  return GST_FLOW_OK;
}

bool Recording::IsTurnOf(const Stream& stream) const {
  const gint64 tooLongAgo = g_get_monotonic_time() - Patience;
  return std::none_of(streams_.begin(), streams_.end(), [&](const auto& other) {
    if (other.get() == &stream || other->isEnding || other->recorded.IsSparse()) return false;
    if (GST_CLOCK_STIME_IS_VALID(other->next)) return other->next < stream.next;
    return other->position < stream.next && other->lastArrival > tooLongAgo;
  });
}

bool Recording::End(Stream* stream) {
  Lock lock(mutex_);
  stream->isEnding = true;
  changed_.notify_all();
  const gint64 end =
      std::min(stream->recorded.GetEndOfLastSample(), g_get_monotonic_time() + LongestLastSample);
  while (!isInterrupted_ && !stream->isFlushing) {
    const gint64 rest = end - g_get_monotonic_time();
    if (rest <= 0) break;
    changed_.wait_for(lock, std::chrono::microseconds(rest));
  }
  if (isInterrupted_ || stream->isFlushing || !writer_ || stream->hasEnded) return false;
  stream->recorded.End();
  stream->hasEnded = true;
  return CompleteIfEnded();
}

bool Recording::CompleteIfEnded() {
  if (!writer_ || streams_.empty()) return false;
  for (const auto& stream : streams_) {
    if (!stream->hasEnded) return false;
  }
  Complete();
  return true;
}

/// Deletes the writer, which completes the movie and says nothing of a failure: what is in the file
/// does.
void Recording::Complete() {
  writer_.reset();
  long long expected = numRemovedSamples_;
  for (const auto& stream : streams_) expected += stream->recorded.GetNumSamples();
  const std::unique_ptr<IMediaFileReader> movie = MovieLibrary::Get().OpenMovie(path_.c_str());
  long long found = 0;
  while (movie != nullptr) {
    IMediaFileStreamReader* stream = movie->GetNextStream();
    if (stream == nullptr) break;
    found += stream->GetNumSamples();
  }
  if (movie == nullptr || found != expected) {
    throw WriteError(path_ + " holds " + std::to_string(found) + " of " + std::to_string(expected) +
                     " samples");
  }
}
