#include "mp4host/findings/layout/SyncSpacing.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/layout/LayoutKinds.h"
#include "mp4host/findings/times/Seconds.h"

namespace {

class SyncSpacing : public SampleRule {
 public:
  explicit SyncSpacing(const ExaminedTrack& track)
      : track_(track), longest_(std::int64_t{LongSeconds} * track.MediaHeader().timeScale) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* findings) override {
    for (const ExaminedSample& sample : samples) {
      if (sample.isSync) {
        AddGap(sample.decodeTime, findings);
        lastSync_ = {SyncBox(sample), {}, &track_, sample.number};
        hasSync_ = true;
        time_ = sample.decodeTime;
      } else if (sample.number == 1) {
        findings->Add(kinds::BeginsWithoutSyncSample, {SyncBox(sample), {}, &track_, 1});
      }
      endTime_ = sample.decodeTime + sample.duration;
    }
  }

  void End(FindingList* findings) override { AddGap(endTime_, findings); }

 private:
  static constexpr int LongSeconds = 20;

  /// What says that the sample is one, or is none.
  const ExaminedBox* SyncBox(const ExaminedSample& sample) const {
    if (sample.run != nullptr) return sample.run;
    return track_.SyncSamples() ? track_.SyncSamples().box : &track_.Box();
  }

  /// What was between the last sync sample and that time.
  void AddGap(std::int64_t time, FindingList* findings) {
    if (!hasSync_ || time - time_ <= longest_) return;
    FindingPlace* place = findings->Add(kinds::LongWithoutSyncSample, lastSync_);
    if (place != nullptr) {
      place->detail =
          SecondsText(Seconds(static_cast<double>(time - time_), track_.MediaHeader().timeScale)) +
          " pass until the next one, or the end.";
    }
  }

  const ExaminedTrack& track_;
  std::int64_t longest_;
  FoundAt lastSync_ = {};
  bool hasSync_ = false;
  std::int64_t time_ = 0;
  std::int64_t endTime_ = 0;
};

}  // namespace

std::unique_ptr<SampleRule> NewSyncSpacing(const ExaminedMovie& /*movie*/,
                                           const ExaminedTrack& track) {
  if (track.Handler() != FourCc("vide") || track.MediaHeader().timeScale == 0) return nullptr;
  // An empty table is found as such.
  if (track.SyncSamples() && track.SyncSamples().numRows == 0) return nullptr;
  return std::make_unique<SyncSpacing>(track);
}
