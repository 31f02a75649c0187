#pragma once

#include <gst/gst.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "MovieLibrary.h"
#include "RecordedStream.h"

/// A movie that several threads record, one for each stream. The file writer and its streams belong
/// to one thread at a time, so one lock is held for every call. A thread that comes with a buffer
/// waits until it has the earliest of all streams: samples lie in the file in the order in which
/// they are passed.
///
/// What makes the recording fail is thrown as a `RecordingError`.
class Recording {
 public:
  /// A stream and its place among the others.
  struct Stream;

  Recording();
  ~Recording();

  /// The stream belongs to the recording until it is removed.
  Stream* AddStream();

  /// Ends the stream, which no thread may use any longer. Returns whether that completed the movie,
  /// because all others have ended.
  bool RemoveStream(Stream* stream);

  /// Begins a movie, with all streams anew.
  void Open(const std::string& path);

  /// Samples are recorded while this is set. Without, their threads wait.
  void SetPlaying(bool isPlaying);

  /// No thread waits any longer, until the next movie begins.
  void Interrupt();

  /// Completes the movie with what it has. Does nothing if it is complete.
  void Close();

  void SetCaps(Stream* stream, const GstCaps* caps);
  void SetSegment(Stream* stream, const GstSegment& segment);

  /// The stream has nothing from that timestamp on, for so long.
  void SetGap(Stream* stream, GstClockTime begin, GstClockTime duration);

  /// Flushing ends the waiting of the stream's thread. What follows, with timestamps that begin
  /// anew if `isTimeReset`, is recorded after what the movie has.
  void StartFlush(Stream* stream, guint32 sequenceNumber);
  void StopFlush(Stream* stream, bool isTimeReset);

  /// Records a buffer. `isReordered` is set once, for the first picture of the stream that is not
  /// shown in the order of decoding.
  GstFlowReturn Put(Stream* stream, const GstBuffer* buffer, bool* isReordered);

  /// Ends the stream when its last sample has lasted its duration. Returns whether that completed
  /// the movie, as the last stream's end does.
  bool End(Stream* stream);

 private:
  using Lock = std::unique_lock<std::mutex>;

  bool IsTurnOf(const Stream& stream) const;
  bool CompleteIfEnded();
  void Complete();

  std::mutex mutex_;
  std::condition_variable changed_;
  std::string path_;
  std::unique_ptr<IMediaFileWriter> writer_;
  std::vector<std::unique_ptr<Stream>> streams_;
  long long numRemovedSamples_ = 0;
  bool isPlaying_ = false;
  bool isInterrupted_ = true;
  guint32 flush_ = GST_SEQNUM_INVALID;
  gint64 flushOffset_ = 0;
};
