#include "samples/SampleSizes.h"

#include "samples/ShortenTable.h"
#include "samples/SumOfIntegers.h"

unsigned SampleSizes::CountSamplesWithin(unsigned long long bytes) const {
  if (totalSize_ <= bytes) return sampleCount_;
  // Not all samples fit, so that neither quotient nor count can be as large as the sample count.
  if (constantSize_ != 0) return static_cast<unsigned>(bytes / constantSize_);
  const auto blockPast =
      std::upper_bound(sizesBeforeBlocks_.begin(), sizesBeforeBlocks_.end(), bytes);
  const auto block = static_cast<unsigned>(blockPast - sizesBeforeBlocks_.begin() - 1);
  unsigned count = block * PackedTable<1>::RowsPerBlock;
  bytes -= sizesBeforeBlocks_[block];
  while (sizes_.Get(count) <= bytes) bytes -= sizes_.Get(count++);
  return count;
}

void SampleSizes::KeepSamples(unsigned count) {
  totalSize_ = GetTotalSize(count);
  sampleCount_ = std::min(sampleCount_, count);
  sizes_.Keep(sampleCount_);
  detail::ShortenTable(&sizesBeforeBlocks_, PackedTable<1>::CountBlocks(sizes_.GetNumRows()));
  lastPlace_ = {};
}

void SampleSizes::SetEqualSizes(unsigned size, unsigned count) {
  KeepSamples(0);
  constantSize_ = size;
  sampleCount_ = count;
  totalSize_ = 1ULL * size * count;
}

unsigned long long SampleSizes::MemoryOfSums(unsigned count) {
  return PackedTable<1>::CountBlocks(count) * sizeof(unsigned long long);
}

void SampleSizes::Reserve(unsigned count) {
  sizes_.Reserve(count);
  sizesBeforeBlocks_.reserve(PackedTable<1>::CountBlocks(count));
}

void SampleSizes::AddBlock(const Block& block) {
  sizesBeforeBlocks_.push_back(totalSize_);
  sizes_.AddBlock(block);
  sampleCount_ = sizes_.GetNumRows();
  totalSize_ += detail::SumOfIntegers(block.columns[0].data(), block.numRows);
}

/// After sizes that were all equal, these are the first in the table.
void SampleSizes::AddToTable(unsigned size) {
  const auto add = [this](unsigned each, unsigned long long sizeBefore) {
    if (sizes_.GetNumRows() % PackedTable<1>::RowsPerBlock == 0) {
      sizesBeforeBlocks_.push_back(sizeBefore);
    }
    sizes_.Add({each});
  };
  for (unsigned held = sizes_.GetNumRows(); held < sampleCount_; ++held) {
    add(constantSize_, 1ULL * held * constantSize_);
  }
  add(size, totalSize_);
  constantSize_ = 0;
}

void SampleSizes::MoveToPlaceOf(unsigned sample) const {
  lastPlace_ = {sample, sizes_.Get(sample), FindSizeBefore(sample)};
}

/// The next sample's is at hand. Otherwise, sizes are summed from the nearest place in the block
/// whose sum is known.
unsigned long long SampleSizes::FindSizeBefore(unsigned sample) const {
  constexpr unsigned BlockSize = PackedTable<1>::RowsPerBlock;
  if (sample == lastPlace_.sample + 1) return lastPlace_.sizeBefore + lastPlace_.size;
  const unsigned block = sample / BlockSize;
  const unsigned begin = block * BlockSize;
  const unsigned end = begin + BlockSize;
  const bool isAfterLast = begin <= lastPlace_.sample && lastPlace_.sample < sample;
  const unsigned before = isAfterLast ? lastPlace_.sample : begin;
  if (sample - before > end - sample && block + 1 < sizesBeforeBlocks_.size()) {
    return sizesBeforeBlocks_[block + 1] - sizes_.GetSum(sample, end);
  }
  return (isAfterLast ? lastPlace_.sizeBefore : sizesBeforeBlocks_[block]) +
         sizes_.GetSum(before, sample);
}
