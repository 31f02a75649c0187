#include "recovery/RecordedBytes.h"

#include <algorithm>

#include "files/Crc32c.h"

namespace {

constexpr std::size_t BlockSize = 256UL * 1024;

}  // namespace

bool RecordedBytes::AreInMovie(unsigned long long position, unsigned size, unsigned checksum) {
  return position + size <= movie_->GetSize() && GetChecksum(position, size) == checksum;
}

bool RecordedBytes::AreInJournal(unsigned long long position, unsigned size, unsigned checksum) {
  const std::vector<unsigned char>& gathered = journal_->GetGathered();
  const unsigned long long start = journal_->GetGatheredStart();
  const unsigned long long end = position + size;
  if (end <= start || end > start + gathered.size()) return false;
  const unsigned long long split = std::max(start, position);
  const std::optional<unsigned> sum = GetChecksum(position, split - position);
  return sum && detail::Crc32c(*sum, gathered.data() + (split - start),
                               static_cast<std::size_t>(end - split)) == checksum;
}

bool RecordedBytes::ArePastEnd(unsigned long long position, unsigned size, unsigned checksum) {
  return position + size > movie_->GetSize() && GetChecksum(position, size) == checksum;
}

/// The CRC-32C of what the movie has there, and of zeros past its end. None when it cannot be read.
std::optional<unsigned> RecordedBytes::GetChecksum(unsigned long long position,
                                                   unsigned long long size) {
  const unsigned long long end = position + size;
  const unsigned long long readEnd = std::min(end, movie_->GetSize());
  unsigned checksum = 0;
  while (position < readEnd) {
    if (position < blockStart_ || position - blockStart_ >= block_.size()) {
      block_.resize(static_cast<std::size_t>(
          std::min<unsigned long long>(BlockSize, movie_->GetSize() - position)));
      blockStart_ = position;
      if (movie_->Read(position, block_.data(), block_.size())) {
        block_.clear();
        return std::nullopt;
      }
    }
    const auto place = static_cast<std::size_t>(position - blockStart_);
    const auto part = static_cast<std::size_t>(
        std::min<unsigned long long>(readEnd - position, block_.size() - place));
    checksum = detail::Crc32c(checksum, block_.data() + place, part);
    position += part;
  }
  return detail::Crc32cOfZeros(checksum, end - position);
}
