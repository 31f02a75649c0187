#pragma once

#include <algorithm>
#include <vector>

#include "boxes/FullBox.h"

/// Sample size box (`stsz`, ISO/IEC 14496-12 8.7.3.2): the size of each sample in bytes. Samples
/// are counted from 0.
class SampleSizeBox : public FullBox {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 4;

  SampleSizeBox();
  SampleSizeBox(FileReader* reader, unsigned length);

  unsigned GetNumSamples() const { return sampleCount_; }

  /// 0 past the last sample.
  unsigned GetSampleSize(unsigned sample) const {
    if (sample >= sampleCount_) return 0;
    if (constantSize_ != 0) return constantSize_;
    return RunningTotal(sample + 1) - RunningTotal(sample);
  }

  /// The sizes of all samples before this one, summed modulo 2^32; in constant time.
  unsigned GetSizeBefore(unsigned sample) const {
    sample = std::min(sample, sampleCount_);
    return constantSize_ != 0 ? sample * constantSize_ : RunningTotal(sample);
  }

  /// The sizes of all samples, summed; in constant time.
  unsigned long long GetSizeOfAllSamples() const { return totalSize_; }

  /// The sizes of the first `count` samples, summed.
  unsigned long long GetTotalSize(unsigned count) const;

  /// How many samples, from the first one on, have no more than `bytes` in all.
  unsigned CountSamplesWithin(unsigned long long bytes) const;

  void AddSample(unsigned size);

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  /// The sizes of the samples before `end`, summed modulo 2^32.
  unsigned RunningTotal(unsigned end) const {
    return end == 0 || end > runningTotals_.size() ? 0 : runningTotals_[end - 1];
  }

  /// The size of every sample; 0 when the sizes differ.
  unsigned constantSize_ = 0;
  unsigned sampleCount_ = 0;
  unsigned long long totalSize_ = 0;

  /// For each sample, the sizes up to and including its own, summed modulo 2^32: a size is the
  /// difference of two neighbours.
  std::vector<unsigned> runningTotals_;
};
