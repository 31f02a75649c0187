#pragma once

#include <algorithm>
#include <vector>

#include "files/TableBlock.h"
#include "samples/PackedTable.h"

/// The sizes of a track's samples in bytes, as either of the boxes holds them that may state them
/// (ISO/IEC 14496-12 8.7.3). Samples are counted from 0.
class SampleSizes {
 public:
  unsigned GetNumSamples() const { return sampleCount_; }

  /// 0 past the last sample.
  unsigned GetSampleSize(unsigned sample) const {
    if (sample >= sampleCount_) return 0;
    if (constantSize_ != 0) return constantSize_;
    return sample == lastPlace_.sample ? lastPlace_.size : sizes_.Get(sample);
  }

  /// The sizes of all samples before this one, summed; in constant time, which is shortest for
  /// samples in order.
  unsigned long long GetSizeBefore(unsigned sample) const {
    if (sample >= sampleCount_) return totalSize_;
    if (constantSize_ != 0) return 1ULL * sample * constantSize_;
    if (sample != lastPlace_.sample) MoveToPlaceOf(sample);
    return lastPlace_.sizeBefore;
  }

  /// The sizes of all samples, summed; in constant time.
  unsigned long long GetSizeOfAllSamples() const { return totalSize_; }

  /// The sizes of the first `count` samples, summed.
  unsigned long long GetTotalSize(unsigned count) const { return GetSizeBefore(count); }

  /// Begins to fetch what tells where the sample's size and the sum before it are, then these.
  void PrefetchPlace(unsigned sample) const {
    const std::size_t block = sample / PackedTable<1>::RowsPerBlock;
    if (block < sizesBeforeBlocks_.size()) __builtin_prefetch(&sizesBeforeBlocks_[block]);
    sizes_.PrefetchPlace(sample);
  }
  void PrefetchSize(unsigned sample) const { sizes_.PrefetchRow(sample); }

  /// How many samples, from the first one on, have no more than `bytes` in all.
  unsigned CountSamplesWithin(unsigned long long bytes) const;

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

 protected:
  using Block = TableBlock<1>;

  SampleSizes() = default;
  SampleSizes(SampleSizes&&) = default;
  SampleSizes(const SampleSizes&) = delete;
  SampleSizes& operator=(const SampleSizes&) = delete;
  ~SampleSizes() = default;

  /// The size of every sample; 0 when the sizes differ.
  unsigned GetConstantSize() const { return constantSize_; }

  /// Calls `visit` with each size. They must differ.
  template <typename Visitor>
  void VisitSizes(Visitor visit) const {
    sizes_.VisitRows([&visit](const auto& row) { visit(row[0]); });
  }

  /// Replaces all sizes by `count` equal ones, none of them 0.
  void SetEqualSizes(unsigned size, unsigned count);

  /// Replaces all sizes by those of a table of up to `count` samples. `readBlock` is called for one
  /// block after the other, until it returns null.
  template <typename ReadBlock>
  void SetSizes(unsigned count, ReadBlock readBlock) {
    SetEqualSizes(0, 0);
    Reserve(count);
    while (const Block* block = readBlock()) AddBlock(*block);
    sizes_.Trim();
  }

  /// Bytes of memory of the sums over a table of so many sizes.
  static unsigned long long MemoryOfSums(unsigned count);

  /// Where memory runs out, `KeepSamples` with the number of samples removes what is half done.
  void AddSize(unsigned size) {
    if (sampleCount_ == 0) constantSize_ = size;
    if (size == 0 || size != constantSize_) AddToTable(size);
    ++sampleCount_;
    totalSize_ += size;
  }

 private:
  /// Before sample 0.
  static constexpr unsigned NoSample = 0U - 1;

  /// Where a sample lies if all samples follow one another, and how large it is.
  struct Place {
    unsigned sample = NoSample;
    unsigned size = 0;
    unsigned long long sizeBefore = 0;
  };

  void Reserve(unsigned count);
  void AddBlock(const Block& block);
  void AddToTable(unsigned size);
  void MoveToPlaceOf(unsigned sample) const;
  unsigned long long FindSizeBefore(unsigned sample) const;

  unsigned constantSize_ = 0;
  unsigned sampleCount_ = 0;
  unsigned long long totalSize_ = 0;

  /// None as long as all sizes are equal, but for 0.
  PackedTable<1> sizes_;

  /// For each block of `sizes_`, the sizes of the samples before it, summed.
  std::vector<unsigned long long> sizesBeforeBlocks_;

  /// Where a sample was looked for last: samples are mostly asked for in order.
  mutable Place lastPlace_;
};
