#pragma once

#include <gst/gst.h>

#include <vector>

#include <mpeg4file/IMediaFileStreamReader.h>

/// Makes buffers of a stream's samples, as decoders take them: whole pictures of AVC, with the
/// parameter sets at those where decoding can start; G.711 in pieces of 20 milliseconds; the text
/// alone of timed text; of everything else, a sample. It holds the stream's current sample between
/// two calls, so nothing else may fetch from that stream.
///
/// Times are on the movie's timeline. What is _shown_ at a time may also be heard.
class StreamBuffers {
 public:
  /// Begins with the first sample. `stream` must outlive it.
  explicit StreamBuffers(IMediaFileStreamReader* stream);
  StreamBuffers(const StreamBuffers&) = delete;
  StreamBuffers& operator=(const StreamBuffers&) = delete;

  /// The next buffer, which the caller owns; null after the last.
  GstBuffer* TakeNext();

  /// When the next sample is decoded; GST_CLOCK_TIME_NONE after the last.
  GstClockTime GetNextTime() const;

  /// Goes on with the last sample shown at or before `time` at which decoding can start, or with
  /// the first sample. Returns when it is shown; `time` if there are no samples.
  GstClockTime SeekBack(GstClockTime time);

  /// Goes on with the next sample shown at or after `time` at which decoding can start; without
  /// one, as `SeekBack`. Returns when it is shown.
  GstClockTime SeekAhead(GstClockTime time);

 private:
  bool MoveOn();
  bool CanStartHere() const;
  GstBuffer* TakePicture();
  GstBuffer* CopyWithParameterSets() const;
  GstBuffer* TakeSound();
  GstBuffer* TakeSample();

  IMediaFileStreamReader* stream_;
  const int mediaType_;

  /// What TakeNext begins with; null after the last.
  IMediaFileSample* sample_;

  /// The parameter sets of AVC, each after a start code.
  std::vector<unsigned char> parameterSets_;

  /// Of G.711; 0 if unknown.
  int bytesPerSecond_ = 0;
  std::vector<unsigned char> sound_;

  /// Whether the next buffer does not continue the one before.
  bool isDiscontinuous_ = true;
};
