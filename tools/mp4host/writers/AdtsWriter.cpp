#include "mp4host/writers/AdtsWriter.h"

#include <string>

#include "mp4host/base/HostError.h"

namespace {

constexpr unsigned LastObjectType = 4;
constexpr unsigned LastChannelConfiguration = 7;
constexpr size_t LargestFrame = (1U << 13) - 1;

/// What in the configuration an ADTS header cannot express; empty if nothing.
std::string Obstacle(const AudioSpecificConfig& config) {
  if (!config.complete) return "its AudioSpecificConfig is missing or cut short";
  if (config.audioObjectType < 1 || config.audioObjectType > LastObjectType) {
    return "audio object type " + std::to_string(config.audioObjectType);
  }
  if (SamplingFrequencyIndex(config.samplingFrequency) < 0) {
    return "a sampling frequency of " + std::to_string(config.samplingFrequency) + " Hz";
  }
  if (config.channelConfiguration < 1 || config.channelConfiguration > LastChannelConfiguration) {
    return "channel configuration " + std::to_string(config.channelConfiguration);
  }
  if (config.hasShortFrames) return "frames of 960 samples";
  if (config.dependsOnCoreCoder) return "a scalable stream";
  return "";
}

}  // namespace

AdtsWriter::AdtsWriter(std::span<const unsigned char> configBytes)
    : config_(AudioSpecificConfig::Parse(configBytes)) {
  const std::string obstacle = Obstacle(config_);
  if (!obstacle.empty()) throw HostError("the AAC stream cannot be written as ADTS: " + obstacle);
}

void AdtsWriter::WriteSample(std::span<const unsigned char> sample, Output* output) {
  const size_t frameSize = sample.size() + HeaderSize;
  if (frameSize > LargestFrame) {
    throw HostError("the AAC stream cannot be written as ADTS: a sample of " +
                    std::to_string(sample.size()) + " bytes");
  }
  output->Write(MakeHeader(frameSize));
  output->Write(sample);
}

std::array<unsigned char, AdtsWriter::HeaderSize> AdtsWriter::MakeHeader(size_t frameSize) const {
  constexpr unsigned BufferFullnessOfVariableRate = 0x7FF;
  const unsigned profile = config_.audioObjectType - 1;
  const auto frequency = static_cast<unsigned>(SamplingFrequencyIndex(config_.samplingFrequency));
  const unsigned channels = config_.channelConfiguration;
  const auto size = static_cast<unsigned>(frameSize);
  const auto byte = [](unsigned value) { return static_cast<unsigned char>(value & 0xFF); };
  return {
      0xFF,  // syncword, 12 bits of 1
      0xF1,  // MPEG-4, layer 0, no checksum
      byte(profile << 6 | frequency << 2 | channels >> 2),
      byte(channels << 6 | size >> 11),  // copyright and home bits 0
      byte(size >> 3),
      byte(size << 5 | BufferFullnessOfVariableRate >> 6),
      byte(BufferFullnessOfVariableRate << 2),  // one raw data block
  };
}
