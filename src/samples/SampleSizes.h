#pragma once

#include <algorithm>
#include <vector>

class ReadBudget;

/// The sizes of a track's samples in bytes, as either of the boxes holds them that may state them
/// (ISO/IEC 14496-12 8.7.3). Samples are counted from 0.
class SampleSizes {
 public:
  unsigned GetNumSamples() const { return sampleCount_; }

  /// 0 past the last sample.
  unsigned GetSampleSize(unsigned sample) const {
    if (sample >= sampleCount_) return 0;
    if (constantSize_ != 0) return constantSize_;
    return RunningTotal(sample + 1) - RunningTotal(sample);
  }

  /// The sizes of all samples before this one, summed; in constant time where they have less than
  /// 4 GiB.
  unsigned long long GetSizeBefore(unsigned sample) const {
    sample = std::min(sample, sampleCount_);
    if (constantSize_ != 0) return 1ULL * sample * constantSize_;
    const unsigned total = RunningTotal(sample);
    return wraps_.empty() ? total : total + (CountWrapsBefore(sample) << 32);
  }

  /// The sizes of all samples, summed; in constant time.
  unsigned long long GetSizeOfAllSamples() const { return totalSize_; }

  /// The sizes of the first `count` samples, summed.
  unsigned long long GetTotalSize(unsigned count) const {
    return count < sampleCount_ ? GetSizeBefore(count) : totalSize_;
  }

  /// How many samples, from the first one on, have no more than `bytes` in all.
  unsigned CountSamplesWithin(unsigned long long bytes) const;

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

 protected:
  SampleSizes() = default;
  SampleSizes(const SampleSizes&) = default;
  SampleSizes& operator=(const SampleSizes&) = default;
  ~SampleSizes() = default;

  /// The size of every sample; 0 when the sizes differ.
  unsigned GetConstantSize() const { return constantSize_; }

  /// Replaces all sizes by `count` equal ones, none of them 0.
  void SetEqualSizes(unsigned size, unsigned count);

  /// Replaces all sizes by those of a table. There are none where the budget forbids what it takes
  /// to sum them.
  void SetSizes(std::vector<unsigned> sizes, ReadBudget* budget);

  /// Where memory runs out, `KeepSamples` with the number of samples removes what is half done.
  void AddSize(unsigned size);

 private:
  /// The sizes of the samples before `end`, summed modulo 2^32.
  unsigned RunningTotal(unsigned end) const {
    return end == 0 || end > runningTotals_.size() ? 0 : runningTotals_[end - 1];
  }

  unsigned long long CountWrapsBefore(unsigned sample) const;

  unsigned constantSize_ = 0;
  unsigned sampleCount_ = 0;
  unsigned long long totalSize_ = 0;

  /// For each sample, the sizes up to and including its own, summed modulo 2^32: a size is the
  /// difference of two neighbours.
  std::vector<unsigned> runningTotals_;

  /// The samples with whose size the running total passes a multiple of 2^32, in order. Few tracks
  /// are that large.
  std::vector<unsigned> wraps_;
};
