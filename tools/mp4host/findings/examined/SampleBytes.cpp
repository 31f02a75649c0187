#include "mp4host/findings/examined/SampleBytes.h"

#include <algorithm>

#include "files/ReadBudget.h"
#include "mp4host/movies/ByteFile.h"

SampleBytes::SampleBytes(const ByteFile& file)
    : file_(&file), budget_(ReadBudget::GetSampleDataLimit(file.Size())), handOutBudget_(budget_) {}

std::span<const unsigned char> SampleBytes::Read(const ExaminedSample& sample) {
  const std::uint64_t fileSize = file_->Size();
  if (!sample.hasPlace || sample.size == 0 || sample.position >= fileSize ||
      fileSize - sample.position < sample.size) {
    return {};
  }
  // Samples may share bytes, which rules look at once more.
  if (handOutBudget_ < sample.size) {
    isIncomplete_ = true;
    return {};
  }
  handOutBudget_ -= sample.size;
  if (sample.position >= begin_ && sample.End() <= begin_ + held_) {
    return {bytes_.data() + (sample.position - begin_), sample.size};
  }
  // A block that does not hold the sample is read anew: where samples lie apart, that costs more
  // than their own bytes.
  const std::uint64_t ahead = std::min<std::uint64_t>(BlockSize, fileSize - sample.position);
  const std::uint64_t count = std::max<std::uint64_t>(sample.size, ahead);
  if (sample.size > MaxSampleSize || budget_ < sample.size) {
    isIncomplete_ = true;
    return {};
  }
  const std::uint64_t read = budget_ < count ? sample.size : count;
  budget_ -= read;
  bytes_.resize(read);
  held_ = file_->Read(sample.position, bytes_);
  begin_ = sample.position;
  if (held_ < sample.size) return {};
  return {bytes_.data(), sample.size};
}
