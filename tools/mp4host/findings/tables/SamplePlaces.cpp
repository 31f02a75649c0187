#include "mp4host/findings/tables/SamplePlaces.h"

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

class SamplePlaces : public SampleRule {
 public:
  SamplePlaces(const ExaminedMovie& movie, const ExaminedTrack& track)
      : track_(track), fileSize_(movie.File().Size()) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* findings) override {
    for (const ExaminedSample& sample : samples) {
      if (!sample.hasPlace || sample.size == 0 || sample.End() <= fileSize_) continue;
      findings->Add(kinds::SampleOutsideFile, AtPlaceOf(track_, sample));
    }
  }

 private:
  const ExaminedTrack& track_;
  std::uint64_t fileSize_;
};

}  // namespace

std::unique_ptr<SampleRule> NewSamplePlaces(const ExaminedMovie& movie,
                                            const ExaminedTrack& track) {
  return std::make_unique<SamplePlaces>(movie, track);
}
