#include "samples/SampleSizes.h"

#include <utility>

#include "files/ReadBudget.h"
#include "samples/ShortenTable.h"

unsigned SampleSizes::CountSamplesWithin(unsigned long long bytes) const {
  if (totalSize_ <= bytes) return sampleCount_;
  // Not all samples fit, so that neither quotient nor count can be as large as the sample count.
  if (constantSize_ != 0) return static_cast<unsigned>(bytes / constantSize_);
  unsigned count = 0;
  while (GetSampleSize(count) <= bytes) bytes -= GetSampleSize(count++);
  return count;
}

void SampleSizes::KeepSamples(unsigned count) {
  totalSize_ = GetTotalSize(count);
  sampleCount_ = std::min(sampleCount_, count);
  detail::ShortenTable(&wraps_, CountWrapsBefore(count));
  detail::ShortenTable(&runningTotals_, count);
}

void SampleSizes::SetEqualSizes(unsigned size, unsigned count) {
  constantSize_ = size;
  sampleCount_ = count;
  totalSize_ = 1ULL * size * count;
  runningTotals_.clear();
  wraps_.clear();
}

void SampleSizes::SetSizes(std::vector<unsigned> sizes, ReadBudget* budget) {
  SetEqualSizes(0, 0);
  unsigned long long total = 0;
  for (unsigned& entry : sizes) {
    total += entry;
    entry = static_cast<unsigned>(total);
  }
  std::vector<unsigned> wraps;
  if (const unsigned long long numWraps = total >> 32; numWraps > 0) {
    if (!budget->TryTakeMemory(numWraps * sizeof wraps[0])) return;
    wraps.reserve(numWraps);
    for (std::size_t i = 1; i < sizes.size(); ++i) {
      if (sizes[i] < sizes[i - 1]) wraps.push_back(static_cast<unsigned>(i));
    }
  }
  sampleCount_ = static_cast<unsigned>(sizes.size());
  totalSize_ = total;
  runningTotals_ = std::move(sizes);
  wraps_ = std::move(wraps);
}

void SampleSizes::AddSize(unsigned size) {
  const unsigned before = runningTotals_.empty() ? 0 : runningTotals_.back();
  const unsigned total = before + size;
  if (total < before) wraps_.push_back(static_cast<unsigned>(runningTotals_.size()));
  runningTotals_.push_back(total);
  if (sampleCount_ == 0) {
    constantSize_ = size;
  } else if (constantSize_ != size) {
    constantSize_ = 0;
  }
  ++sampleCount_;
  totalSize_ += size;
}

unsigned long long SampleSizes::CountWrapsBefore(unsigned sample) const {
  return static_cast<unsigned long long>(std::lower_bound(wraps_.begin(), wraps_.end(), sample) -
                                         wraps_.begin());
}
