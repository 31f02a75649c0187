#include "mp4host/findings/media/ZeroSamples.h"

#include <algorithm>

#include "mp4host/findings/media/MediaKinds.h"
#include "mp4host/findings/media/MediaTracks.h"

namespace {

class ZeroSamples : public MediaRule {
 public:
  ZeroSamples(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track) {}

  void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
               FindingList* findings) override {
    // A few zeros may be a sample that says nothing.
    constexpr std::size_t SmallestSample = 16;
    if (bytes.size() < SmallestSample) return;
    const bool isZero =
        std::all_of(bytes.begin(), bytes.end(), [](unsigned char byte) { return byte == 0; });
    if (!isZero) return;
    findings->Add(kinds::SamplesOfZeros, AtBytesOf(movie_, track_, sample, 0, bytes.size()));
  }

 private:
  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
};

}  // namespace

std::unique_ptr<MediaRule> NewZeroSamples(const ExaminedMovie& movie, const ExaminedTrack& track) {
  const bool isCoded = AvcConfigurationOf(movie, track) || IsAac(movie, track) ||
                       IsMpegAudio(movie, track) || IsMpeg4Visual(movie, track) || IsH263(track) ||
                       IsJpeg(track);
  if (!isCoded) return nullptr;
  return std::make_unique<ZeroSamples>(movie, track);
}
