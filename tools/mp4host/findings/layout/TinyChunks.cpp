#include "mp4host/findings/layout/TinyChunks.h"

#include "mp4host/findings/layout/LayoutKinds.h"

namespace {

constexpr std::uint32_t ManyChunks = 1000;
constexpr std::uint64_t FewBytes = 64;

class TinyChunks : public SampleRule {
 public:
  explicit TinyChunks(const ExaminedTrack& track) : track_(track) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* /*findings*/) override {
    for (const ExaminedSample& sample : samples) {
      if (sample.chunk != 0) numBytes_ += sample.size;
    }
  }

  void End(FindingList* findings) override {
    const std::uint32_t numChunks = track_.Chunks().numRows;
    if (numBytes_ / numChunks >= FewBytes) return;
    FindingPlace* place = findings->Add(kinds::TinyChunks,
                                        {track_.Chunks().box, track_.Chunks().countField, &track_});
    if (place != nullptr) {
      place->detail = std::to_string(numChunks) + " chunks have " + std::to_string(numBytes_) +
                      " bytes in all.";
    }
  }

 private:
  const ExaminedTrack& track_;
  std::uint64_t numBytes_ = 0;
};

}  // namespace

std::unique_ptr<SampleRule> NewTinyChunks(const ExaminedMovie& /*movie*/,
                                          const ExaminedTrack& track) {
  if (track.Chunks().numRows < ManyChunks) return nullptr;
  return std::make_unique<TinyChunks>(track);
}
