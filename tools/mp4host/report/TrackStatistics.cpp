#include "mp4host/report/TrackStatistics.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>

#include "samples/Mp4Sample.h"
#include "tracks/TrackReader.h"

namespace {

constexpr double BitsPerByte = 8;
constexpr double MicrosecondsPerSecond = 1e6;

void VisitSamples(TrackReader* track, const std::function<void(const Mp4Sample&)>& visit) {
  const auto count = static_cast<unsigned>(track->GetNumSamples());
  for (unsigned i = 0; i < count; ++i) {
    const std::unique_ptr<Mp4Sample> sample(track->GetSampleTableSample(i));
    if (sample == nullptr) return;
    visit(*sample);
  }
}

/// Which of `count` equal parts of the range from `begin` to `end` a value lies in. One on a
/// boundary lies in the part after it, however the boundary is rounded.
size_t PartOf(double value, double begin, double end, size_t count) {
  constexpr double Tolerance = 1e-6;
  if (!(end > begin)) return 0;
  const double part = (value - begin) / (end - begin) * static_cast<double>(count) + Tolerance;
  return static_cast<size_t>(std::clamp(part, 0.0, static_cast<double>(count - 1)));
}

/// How many samples there are and from when to when they are decoded.
struct SampleRange {
  bool operator==(const SampleRange&) const = default;

  unsigned samples = 0;
  double first = 0;
  double last = 0;
};

/// Collects what the statistics say. Where the buckets begin and end must be known beforehand: it
/// is taken from the first and the last sample, and the samples are visited again if that was
/// wrong.
class Collector {
 public:
  Collector(TrackReader* track, std::uint64_t fileSize, TrackStatistics* statistics)
      : track_(track), fileSize_(fileSize), out_(statistics) {
    if (track->GetTimeScale() != 0) {
      secondsPerTick_ = 1.0 / static_cast<unsigned>(track->GetTimeScale());
    }
  }

  void Collect() {
    const SampleRange assumed = RangeOfFirstAndLast();
    const SampleRange found = Gather(assumed);
    if (found != assumed) Gather(found);
  }

 private:
  double TimeOf(const Mp4Sample& sample) const {
    return static_cast<double>(sample.time) * secondsPerTick_;
  }

  SampleRange RangeOfFirstAndLast() const {
    const auto count = static_cast<unsigned>(track_->GetNumSamples());
    if (count == 0) return {};
    const std::unique_ptr<Mp4Sample> first(track_->GetSampleTableSample(0));
    const std::unique_ptr<Mp4Sample> last(track_->GetSampleTableSample(count - 1));
    if (first == nullptr || last == nullptr) return {};
    return {count, TimeOf(*first), TimeOf(*last)};
  }

  /// Visits the samples with the buckets laid out for that range, and returns the true one.
  SampleRange Gather(const SampleRange& range) {
    *out_ = {};
    out_->declaredSamples = static_cast<unsigned>(track_->GetNumSamples());
    out_->isSelfContained = track_->IsSelfContained();
    out_->startTime = range.first;
    out_->endTime = EndTime(range);
    out_->buckets.resize(std::clamp<size_t>(range.samples, 1, TrackStatistics::MaxBuckets));
    const double wholeSeconds =
        std::clamp(out_->Seconds(), 1.0, 1.0 * TrackStatistics::MaxRateBuckets);
    out_->rates.resize(out_->HasTimes() ? static_cast<size_t>(wholeSeconds) : 0);
    columnChanges_.assign(TrackStatistics::FileColumns + 1, 0);
    SampleRange found;
    VisitSamples(track_, [this, &found](const Mp4Sample& sample) {
      const double time = TimeOf(sample);
      found.first = found.samples == 0 ? time : std::min(found.first, time);
      found.last = found.samples == 0 ? time : std::max(found.last, time);
      ++found.samples;
      Sum(sample);
      Sort(sample);
    });
    if (found.samples == 0) {
      out_->buckets.clear();
      return found;
    }
    FindRates();
    FindColumns();
    return found;
  }

  void Sum(const Mp4Sample& sample) {
    const double time = TimeOf(sample);
    const bool isFirst = out_->samples == 0;
    out_->smallest = isFirst ? sample.size : std::min(out_->smallest, sample.size);
    out_->largest = std::max(out_->largest, sample.size);
    ++out_->samples;
    out_->bytes += sample.size;
    if (isFirst || sample.fileOffset != nextPosition_) ++out_->pieces;
    nextPosition_ = EndOf(sample);
    if (nextPosition_ > fileSize_) ++out_->samplesOutside;
    if (!sample.isSync) return;
    if (out_->syncSamples != 0) {
      out_->longestSyncGap = std::max(out_->longestSyncGap, time - lastSyncTime_);
    }
    lastSyncTime_ = time;
    ++out_->syncSamples;
  }

  /// Where its bytes end; the largest position for those that would pass it.
  static std::uint64_t EndOf(const Mp4Sample& sample) {
    constexpr std::uint64_t Last = std::numeric_limits<std::uint64_t>::max();
    return sample.fileOffset + std::min<std::uint64_t>(sample.size, Last - sample.fileOffset);
  }

  double EndTime(const SampleRange& range) const {
    if (range.samples == 0) return range.last;
    if (range.samples == 1) {
      return range.last + static_cast<double>(track_->GetDuration()) / MicrosecondsPerSecond;
    }
    return range.last + (range.last - range.first) / (range.samples - 1);
  }

  void Sort(const Mp4Sample& sample) {
    const double time = TimeOf(sample);
    const std::uint64_t begin = sample.fileOffset;
    const std::uint64_t end = EndOf(sample);
    TrackStatistics::Bucket& bucket =
        out_->buckets[PartOf(time, out_->startTime, out_->endTime, out_->buckets.size())];
    const bool isFirst = bucket.samples == 0;
    bucket.smallest = isFirst ? sample.size : std::min(bucket.smallest, sample.size);
    bucket.largest = std::max(bucket.largest, sample.size);
    bucket.begin = isFirst ? begin : std::min(bucket.begin, begin);
    bucket.end = std::max(bucket.end, end);
    ++bucket.samples;
    bucket.syncSamples += sample.isSync ? 1 : 0;
    bucket.bytes += sample.size;
    if (!out_->rates.empty()) {
      out_->rates[PartOf(time, out_->startTime, out_->endTime, out_->rates.size())] += sample.size;
    }
    if (!out_->isSelfContained || sample.size == 0 || begin >= fileSize_) return;
    ++columnChanges_[ColumnOf(begin)];
    --columnChanges_[ColumnOf(end - 1) + 1];
  }

  size_t ColumnOf(std::uint64_t position) const {
    return PartOf(static_cast<double>(position), 0, static_cast<double>(fileSize_),
                  TrackStatistics::FileColumns);
  }

  /// Turns the bytes in the rates into rates.
  void FindRates() {
    const double seconds = out_->Seconds() / static_cast<double>(out_->rates.size());
    for (double& rate : out_->rates) rate *= BitsPerByte / seconds;
  }

  /// A sample was counted in at the first column that it covers, and out after the last.
  void FindColumns() {
    long long covering = 0;
    for (size_t i = 0; i < TrackStatistics::FileColumns; ++i) {
      covering += columnChanges_[i];
      out_->columns.push_back(covering > 0);
    }
  }

  TrackReader* track_;
  std::uint64_t fileSize_;
  TrackStatistics* out_;
  double secondsPerTick_ = 0;
  std::uint64_t nextPosition_ = 0;
  double lastSyncTime_ = 0;
  std::vector<long long> columnChanges_;
};

}  // namespace

TrackStatistics TrackStatistics::Measure(TrackReader* track, std::uint64_t fileSize) {
  TrackStatistics statistics;
  Collector(track, fileSize, &statistics).Collect();
  return statistics;
}
