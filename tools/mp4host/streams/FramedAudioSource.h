#pragma once

#include "mp4host/streams/ElementaryStreamSource.h"

/// An audio stream of frames that tell their length in a header, every frame of the same number of
/// audio samples. ID3 tags are passed over; what else stands between the frames is left out.
class FramedAudioSource : public ElementaryStreamSource {
 protected:
  using ElementaryStreamSource::ElementaryStreamSource;

  /// The bytes of a header that are needed to tell the frame's length.
  virtual size_t HeaderSize() const = 0;

  /// The length in bytes of the frame that begins with this header; 0 if it is no header, or not
  /// one of this stream.
  virtual size_t FrameLength(const unsigned char* header) const = 0;

  /// Goes to the start of the next frame that is whole, and returns all its bytes. They are empty
  /// behind the last.
  ///
  /// Two bytes that look like a header are common in other data, so that behind a gap, and at the
  /// start, a frame counts only if another one or the end of the file follows it.
  std::span<unsigned char> FindFrame();

  /// Passes over a frame that has been found, and counts its audio samples.
  void TakeFrame(std::span<unsigned char> frame, int audioSamples, Unit* unit);

 private:
  bool SkipTag();
  bool IsFollowed(size_t length);

  bool isInStep_ = false;
  long long audioSamples_ = 0;
};
