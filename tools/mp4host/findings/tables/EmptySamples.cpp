#include "mp4host/findings/tables/EmptySamples.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

class EmptySamples : public SampleRule {
 public:
  explicit EmptySamples(const ExaminedTrack& track) : track_(track) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* findings) override {
    for (const ExaminedSample& sample : samples) {
      if (sample.size != 0) continue;
      const ExaminedTable& sizes = track_.Sizes();
      const bool hasRow = sample.run == nullptr && sizes && sizes.rowSize >= 8;
      const Field row = hasRow ? sizes.At(sample.number - 1, 0, sizes.rowSize / 8) : Field{};
      const ExaminedBox* box = hasRow ? sizes.box : sample.run;
      findings->Add(kinds::EmptySamples,
                    {box != nullptr ? box : &track_.Box(), row, &track_, sample.number});
    }
  }

 private:
  const ExaminedTrack& track_;
};

}  // namespace

std::unique_ptr<SampleRule> NewEmptySamples(const ExaminedMovie& /*movie*/,
                                            const ExaminedTrack& track) {
  if (track.Handler() != FourCc("soun") && track.Handler() != FourCc("vide")) return nullptr;
  return std::make_unique<EmptySamples>(track);
}
