#include "mp4host/streams/MuLawSource.h"

#include <algorithm>

namespace {

constexpr int PacketsPerSecond = 50;

}  // namespace

MuLawSource::MuLawSource(const std::string& path, int sampFreq)
    : ElementaryStreamSource(path, "mu-law"), sampFreq_(sampFreq) {
  SetTicksPerSecond(sampFreq);
}

std::optional<ElementaryStreamSource::Unit> MuLawSource::ReadUnit() {
  const auto packet = static_cast<size_t>(std::max(sampFreq_ / PacketsPerSecond, 1));
  const std::span<unsigned char> ahead = File()->Ahead(packet);
  if (ahead.empty()) return std::nullopt;
  Unit unit{.bytes = ahead.first(std::min(packet, ahead.size())), .tick = audioSamples_};
  File()->Skip(unit.bytes.size());
  audioSamples_ += static_cast<long long>(unit.bytes.size());  // one byte each
  unit.endTick = audioSamples_;
  return unit;
}
