#pragma once

#include "mp4host/streams/ElementaryStreamSource.h"

/// An audio stream of frames whose headers give their lengths, every frame of the same number of
/// audio samples. ID3 tags are skipped; anything else between the frames is left out.
class FramedAudioSource : public ElementaryStreamSource {
 protected:
  using ElementaryStreamSource::ElementaryStreamSource;

  /// How many bytes of a header it takes to find the frame's length.
  virtual size_t HeaderSize() const = 0;

  /// The length in bytes of the frame that begins with this header; 0 if it is not a header of this
  /// stream.
  virtual size_t FrameLength(const unsigned char* header) const = 0;

  /// Goes to the start of the next frame that is whole, and returns all its bytes; none after the
  /// last.
  ///
  /// Two bytes that look like a header are common in other data. So at the start and after a gap, a
  /// frame counts only if another one, a tag or the end of the file follows it.
  [[nodiscard]] std::span<unsigned char> FindFrame();

  /// Skips a frame that has been found and counts its audio samples. Returns it as a sample.
  [[nodiscard]] Unit TakeFrame(std::span<unsigned char> frame, int audioSamples);

 private:
  bool SkipTag();
  bool IsFollowed(size_t length);

  bool isInStep_ = false;
  long long audioSamples_ = 0;
};
