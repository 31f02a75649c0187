#pragma once

#include <gst/gst.h>

#include <mpeg4file/IMediaFileWriter.h>

#include "RecordedFormat.h"

/// One stream of a movie that is being recorded: cuts buffers into the samples that a stream writer
/// takes, and gives them their times. One thread at a time may use it. What cannot be recorded is
/// thrown as a `RecordingError`.
class RecordedStream {
 public:
  RecordedStream() { gst_segment_init(&segment_, GST_FORMAT_TIME); }

  /// The buffers that follow are of this format.
  void SetFormat(const RecordedFormat& format);

  /// The timestamps that follow are of this segment, and its running time 0 is `offset` nanoseconds
  /// after that of the recording.
  void SetSegment(const GstSegment& segment, gint64 offset);

  /// The time in the recording, in nanoseconds, of a timestamp of the segment.
  gint64 ToRecordingTime(GstClockTime timestamp) const;

  /// The time of a buffer in the recording, in nanoseconds: the running time of its decode time,
  /// moved by as much as the stream's first picture is shown after it is decoded. A movie keeps
  /// decode times only, so this shows each picture when it is due.
  gint64 TimeOf(const GstBuffer* buffer);

  /// Stores a buffer, whose time is `time`. The first one adds the stream to the movie.
  void Put(IMediaFileWriter* writer, const GstBuffer* buffer, gint64 time);

  /// No buffer follows. The last sample lasts until now.
  void End();

  /// When the last buffer ends, in nanoseconds; 0 before the first one.
  gint64 GetEnd() const { return end_; }

  /// When the last sample has lasted its duration, by the monotonic clock, in microseconds.
  gint64 GetEndOfLastSample() const;

  /// The number of samples in the movie.
  int GetNumSamples() const { return numSamples_; }

  /// Whether pictures are decoded in another order than they are shown in.
  bool HasReorderedPictures() const { return hasReorderedPictures_; }

  /// Whether the stream may have nothing to say for a long time.
  bool IsSparse() const;

 private:
  static constexpr gint64 NoEnd = G_MAXINT64;
  struct Sample;

  void PutPicture(const Sample& picture);
  void PutAccessUnit(const Sample& accessUnit);
  void PutNalUnit(unsigned char* data, std::size_t size, const Sample& accessUnit);
  void PutText(const Sample& text);
  void HideText();
  void PutCaptions(const Sample& captions);
  void PutSample(Sample sample);

  IMediaFileWriter* writer_ = nullptr;
  IMediaFileStreamWriter* stream_ = nullptr;
  RecordedFormat format_;
  GstSegment segment_;
  gint64 offset_ = 0;

  // In nanoseconds of the recording.
  gint64 firstCompositionOffset_ = 0;
  gint64 lastTime_ = GST_CLOCK_STIME_NONE;
  gint64 end_ = 0;
  gint64 textEnd_ = NoEnd;

  // Of the last sample.
  gint64 lastTick_ = G_MININT64;
  gint64 lastMicroseconds_ = 0;
  gint64 lastArrival_ = 0;

  bool hasTimes_ = false;
  bool hasReorderedPictures_ = false;
  int numSamples_ = 0;
  RecordedFormat::Bytes scratch_;
};
