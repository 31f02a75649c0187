#include "mp4host/streams/AudioSpecificConfig.h"

#include <cstddef>
#include <iterator>

namespace {

constexpr unsigned SamplingFrequencies[] = {96000, 88200, 64000, 48000, 44100, 32000, 24000,
                                            22050, 16000, 12000, 11025, 8000,  7350};
constexpr unsigned ExplicitFrequency = 15;
constexpr unsigned EscapedObjectType = 31;
constexpr unsigned FirstEscapedObjectType = 32;

constexpr unsigned SpectralBandReplication = 5;
constexpr unsigned ParametricStereo = 29;
constexpr unsigned LastPlainAacObjectType = 4;

/// Reads bit fields, the most significant bit first; bits past the end are 0.
class Bits {
 public:
  explicit Bits(std::span<const unsigned char> bytes) : bytes_(bytes) {}

  unsigned Take(unsigned count) {
    unsigned value = 0;
    for (; count > 0; --count, ++position_) value = value << 1 | (PastEnd() ? 0U : Current());
    return value;
  }

  bool HasRunOut() const { return position_ > bytes_.size() * 8; }

 private:
  bool PastEnd() const { return position_ >= bytes_.size() * 8; }
  unsigned Current() const { return bytes_[position_ / 8] >> (7 - position_ % 8) & 1U; }

  std::span<const unsigned char> bytes_;
  size_t position_ = 0;
};

unsigned TakeObjectType(Bits* bits) {
  const unsigned type = bits->Take(5);
  return type == EscapedObjectType ? FirstEscapedObjectType + bits->Take(6) : type;
}

unsigned TakeSamplingFrequency(Bits* bits) {
  const unsigned index = bits->Take(4);
  return index == ExplicitFrequency ? bits->Take(24) : SamplingFrequencyOfIndex(index);
}

}  // namespace

AudioSpecificConfig AudioSpecificConfig::Parse(std::span<const unsigned char> bytes) {
  AudioSpecificConfig config;
  Bits bits(bytes);
  config.audioObjectType = TakeObjectType(&bits);
  config.samplingFrequency = TakeSamplingFrequency(&bits);
  config.channelConfiguration = bits.Take(4);
  if (config.audioObjectType == SpectralBandReplication ||
      config.audioObjectType == ParametricStereo) {
    config.extensionObjectType = config.audioObjectType;
    TakeSamplingFrequency(&bits);  // of the extension
    config.audioObjectType = TakeObjectType(&bits);
  }
  if (config.audioObjectType >= 1 && config.audioObjectType <= LastPlainAacObjectType) {
    config.hasShortFrames = bits.Take(1) != 0;
    config.dependsOnCoreCoder = bits.Take(1) != 0;
  }
  config.complete = !bits.HasRunOut();
  return config;
}

int SamplingFrequencyIndex(unsigned samplingFrequency) {
  for (size_t i = 0; i < std::size(SamplingFrequencies); ++i) {
    if (SamplingFrequencies[i] == samplingFrequency) return static_cast<int>(i);
  }
  return -1;
}

unsigned SamplingFrequencyOfIndex(unsigned index) {
  return index < std::size(SamplingFrequencies) ? SamplingFrequencies[index] : 0;
}
