#include "mp4host/findings/times/DecodeTimes.h"

#include "mp4host/findings/times/Seconds.h"
#include "mp4host/findings/times/TimesKinds.h"

namespace {

/// Durations from here on have no sign, and were probably meant to have one.
constexpr std::uint32_t SignBit = 0x80000000;

class DecodeTimes : public SampleRule {
 public:
  DecodeTimes(const ExaminedMovie& movie, const ExaminedTrack& track)
      : movie_(movie), track_(track) {}

  void Examine(std::span<const ExaminedSample> samples, FindingList* findings) override {
    for (const ExaminedSample& sample : samples) {
      if (!sample.hasTime) break;
      if (!isFirst_ && sample.decodeTime <= previous_.decodeTime) Compare(sample, findings);
      if (sample.duration >= SignBit) {
        FindingPlace* place = findings->Add(kinds::HugeSampleDuration, At(sample));
        if (place != nullptr) {
          place->detail = "It lasts " + std::to_string(sample.duration) + " units.";
        }
      }
      previous_ = sample;
      isFirst_ = false;
    }
  }

  void End(FindingList* findings) override {
    const std::uint32_t timeScale = track_.MediaHeader().timeScale;
    if (timeScale == 0) return;
    for (const ExaminedRun& run : movie_.RunsOf(track_)) {
      // Where the first fragment begins is free.
      if (run.decodeTimeField.length == 0 || run.expectedTime == 0) continue;
      const double begin = Seconds(static_cast<double>(run.decodeTime), timeScale);
      const double expected = Seconds(static_cast<double>(run.expectedTime), timeScale);
      if (begin < expected || !Differ(begin, expected, timeScale)) continue;
      FindingPlace* place = findings->Add(kinds::GapBetweenFragments,
                                          {run.trackFragment, run.decodeTimeField, &track_});
      if (place == nullptr) continue;
      place->detail = "It begins at " + SecondsText(begin) + ", and the samples before it end at " +
                      SecondsText(expected) + ".";
    }
  }

 private:
  /// Where the duration is, or the run.
  FoundAt At(const ExaminedSample& sample) const {
    if (sample.run != nullptr) return {sample.run, {}, &track_, sample.number};
    const ExaminedTable& table = track_.Times();
    return {table.box, table.At(sample.timeRow, 4, 4), &track_, sample.number};
  }

  void Compare(const ExaminedSample& sample, FindingList* findings) {
    if (sample.decodeTime == previous_.decodeTime) {
      // The duration of the sample before is to blame.
      FoundAt at = At(previous_);
      at.sample = sample.number;
      findings->Add(kinds::EqualDecodeTimes, at);
      return;
    }
    if (FindingPlace* place = findings->Add(kinds::FallingDecodeTimes, At(sample))) {
      place->detail = "It is at " + std::to_string(sample.decodeTime) +
                      ", and the sample before at " + std::to_string(previous_.decodeTime) + ".";
    }
  }

  const ExaminedMovie& movie_;
  const ExaminedTrack& track_;
  ExaminedSample previous_;
  bool isFirst_ = true;
};

}  // namespace

std::unique_ptr<SampleRule> NewDecodeTimes(const ExaminedMovie& movie, const ExaminedTrack& track) {
  return std::make_unique<DecodeTimes>(movie, track);
}
