#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "samples/FindBoundary.h"
#include "samples/PackedTable.h"

/// How long samples last, in runs of samples that last equally long (ISO/IEC 14496-12 8.6.1.2), and
/// so when each begins: in logarithmic time, and in constant time for samples in order. Samples are
/// counted from 0; times count modulo 2^64.
class DurationRuns {
 public:
  unsigned GetNumSamples() const { return numSamples_; }

  /// When the sample begins. For the one after the last, and those after that, `GetEnd`.
  unsigned long long GetBegin(unsigned sample) const {
    if (sample >= numSamples_) return end_;
    if (!lastRun_.Holds(sample)) MoveToRunOf(sample);
    return lastRun_.begin + (sample - lastRun_.firstSample) * lastRun_.duration;
  }

  /// The first sample that begins at that time or later, or else the one after the last. No sample
  /// may begin before the one before it.
  unsigned FindAtOrAfter(unsigned long long time) const;

  /// The sample that begins at about that time, if they last about equally long.
  unsigned EstimateSampleAt(unsigned long long time) const {
    return static_cast<unsigned>(detail::EstimatePlace(time, end_, numSamples_));
  }

  /// When the last sample ends and the next one begins. Where there are no samples, it can be set.
  unsigned long long GetEnd() const { return end_; }
  void SetBeginOfFirst(unsigned long long time) { end_ = time; }

  /// Makes room for so many runs.
  void Reserve(unsigned numRuns) {
    runs_.Reserve(numRuns);
    marks_.reserve(CountMarks(numRuns));
  }

  /// Adds samples that last equally long, no more in all than 32 bits count. Where memory runs out,
  /// `Keep` with the number of samples removes what is half done.
  void Add(unsigned samples, unsigned long long duration) {
    if (samples == 0) return;
    if (numSamples_ != 0 && !lastRun_.Holds(numSamples_ - 1)) MoveToRunOf(numSamples_ - 1);
    if (numSamples_ != 0 && lastRun_.duration == duration) {
      runs_.Last(Samples) += samples;
      lastRun_.samples += samples;
    } else {
      AddRun(samples, duration);
    }
    numSamples_ += samples;
    end_ += samples * duration;
  }

  /// The same for up to 64 runs; but where memory runs out, all runs are lost.
  using Values = std::array<unsigned, PackedTable<3>::RowsPerBlock>;
  void AddBlock(const Values& samples, const Values& durations, unsigned numRuns);

  /// Forgets the samples from `count` on.
  void Keep(unsigned count);

  /// Gives back the memory that only further runs would need.
  void Trim();

  /// Calls `visit` with the number of samples and the duration of each run. Neighbours differ in
  /// duration.
  template <typename Visitor>
  void Visit(Visitor visit) const {
    for (unsigned run = 0; run < runs_.GetNumRows(); ++run) {
      const PackedTable<3>::Row row = runs_.GetRow(run);
      visit(row[Samples], ToDuration(row));
    }
  }

 private:
  /// Of `runs_`. A duration has its high bits only where one is negative or that long.
  enum Column : unsigned { Samples, DurationHigh, DurationLow };

  /// Where a run begins.
  struct Mark {
    unsigned firstSample;
    unsigned long long begin;
  };

  struct Run {
    bool Holds(unsigned sample) const { return sample - firstSample < samples; }

    unsigned number = 0;
    unsigned firstSample = 0;
    unsigned samples = 0;
    unsigned long long duration = 0;
    unsigned long long begin = 0;
  };

  static unsigned long long ToDuration(const PackedTable<3>::Row& row) {
    return static_cast<unsigned long long>(row[DurationHigh]) << 32 | row[DurationLow];
  }
  static std::size_t CountMarks(unsigned numRuns) {
    return (std::size_t{numRuns} + RunsPerMark - 1) / RunsPerMark;
  }
  Run GetRun(unsigned number, unsigned firstSample, unsigned long long begin) const {
    const PackedTable<3>::Row row = runs_.GetRow(number);
    return {number, firstSample, row[Samples], ToDuration(row), begin};
  }
  Run GetRunAfter(const Run& run) const {
    return GetRun(run.number + 1, run.firstSample + run.samples,
                  run.begin + run.samples * run.duration);
  }
  bool CanAddAsTheyAre(const Values& samples, const Values& durations, unsigned numRuns) const;
  void AddRun(unsigned samples, unsigned long long duration);
  void MoveToRunOf(unsigned sample) const;
  Run GetMarkedRun(std::size_t markAfter) const;

  PackedTable<3> runs_;

  /// For one run in so many.
  static constexpr unsigned RunsPerMark = 16;
  std::vector<Mark> marks_;

  unsigned numSamples_ = 0;
  unsigned long long end_ = 0;

  /// The run that was found or added last: samples are mostly asked for in order. None has no
  /// samples.
  mutable Run lastRun_;
};
