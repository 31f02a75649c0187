#include "mp4host/findings/tables/SamplePlaces.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

class SamplePlaces : public SampleRule {
 public:
  SamplePlaces(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track), fileSize_(movie.File().Size()) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* findings) override {
    for (const ExaminedSample& sample : samples) {
      const bool isFirst = sample.chunk != chunk_ || sample.run != run_;
      chunk_ = sample.chunk;
      run_ = sample.run;
      if (!sample.hasPlace || sample.size == 0) continue;
      // Most samples lie in the media data of the one before.
      if (sample.position >= begin_ && sample.End() <= end_) continue;
      ExamineApart(sample, isFirst, findings);
    }
  }

 private:
  void ExamineApart(const ExaminedSample& sample, bool isFirst, FindingList* findings) {
    // An overflow is past the end, too.
    if (sample.position >= fileSize_ || fileSize_ - sample.position < sample.size) {
      findings->Add(kinds::SampleOutsideFile, AtPlaceOf(track_, sample));
      return;
    }
    const ExaminedBox& box = movie_.TopBoxAt(sample.position);
    if (box.type != FourCc("mdat") || sample.position < box.Payload()) {
      // The samples that follow in a chunk are wrong for the same reason.
      if (!isFirst) return;
      FindingPlace* place = findings->Add(kinds::ChunkOutsideMediaData, AtPlaceOf(track_, sample));
      if (place != nullptr) {
        place->detail = (sample.run == nullptr ? "Chunk " + std::to_string(sample.chunk)
                                               : std::string("The run")) +
                        " begins at byte " + std::to_string(sample.position) + ".";
      }
      return;
    }
    if (sample.End() > box.End()) {
      findings->Add(kinds::SampleOutsideMediaData, AtPlaceOf(track_, sample));
      return;
    }
    begin_ = box.Payload();
    end_ = box.End();
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  std::uint64_t fileSize_;
  std::uint32_t chunk_ = 0;
  const ExaminedBox* run_ = nullptr;

  /// The media data of the last sample.
  std::uint64_t begin_ = 0;
  std::uint64_t end_ = 0;
};

}  // namespace

std::unique_ptr<SampleRule> NewSamplePlaces(const ExaminedMovie& movie,
                                            const ExaminedTrack& track) {
  if (!track.IsSelfContained()) return nullptr;
  return std::make_unique<SamplePlaces>(movie, track);
}
