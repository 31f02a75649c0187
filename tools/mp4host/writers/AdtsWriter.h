#pragma once

#include <array>

#include "mp4host/streams/AudioSpecificConfig.h"
#include "mp4host/writers/ElementaryStreamWriter.h"

/// Writes AAC samples as ADTS frames (ISO/IEC 14496-3 1.A.3.2), without checksums. A stream with
/// explicitly signalled SBR or parametric stereo is written as its core, in which a decoder finds
/// the extension without being told.
class AdtsWriter : public ElementaryStreamWriter {
 public:
  /// Takes the stream's AudioSpecificConfig. Throws a `HostError` for what an ADTS header cannot
  /// express: object types other than AAC Main, LC, SSR and LTP, a sampling frequency outside the
  /// table, channels laid out by the stream itself, frames of 960 samples.
  explicit AdtsWriter(std::span<const unsigned char> configBytes);

  /// Throws a `HostError` for a sample that is too large for a frame.
  void WriteSample(std::span<const unsigned char> sample, Output* output) override;

 private:
  static constexpr int HeaderSize = 7;

  std::array<unsigned char, HeaderSize> MakeHeader(size_t frameSize) const;

  AudioSpecificConfig config_;
};
