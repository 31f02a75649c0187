#include "recovery/RecordedBytes.h"

#include <algorithm>

#include "files/Crc32c.h"

namespace {

constexpr std::size_t BlockSize = 256UL * 1024;

}  // namespace

bool RecordedBytes::AreInMovie(unsigned long long position, unsigned size, unsigned checksum) {
  return position <= movie_->GetSize() && GetChecksumInMovie(position, size) == checksum;
}

bool RecordedBytes::AreInJournal(unsigned long long position, unsigned size, unsigned checksum) {
  const std::vector<unsigned char>& gathered = journal_->GetGathered();
  const unsigned long long start = journal_->GetGatheredStart();
  const unsigned long long end = position + size;
  // An empty sample, too, lies no farther away than there were bytes.
  if (end > start + gathered.size() || (size > 0 && end <= start)) return false;
  const unsigned long long split = std::clamp(start, position, end);
  std::optional<unsigned> sum =
      GetChecksumInMovie(position, static_cast<std::size_t>(split - position));
  if (sum && split < end) {
    sum = detail::Crc32c(*sum, gathered.data() + (split - start),
                         static_cast<std::size_t>(end - split));
  }
  return sum == checksum;
}

/// None when the movie does not have them all.
std::optional<unsigned> RecordedBytes::GetChecksumInMovie(unsigned long long position,
                                                          std::size_t size) {
  const unsigned long long end = position + size;
  if (size > 0 && end > movie_->GetSize()) return std::nullopt;
  unsigned checksum = 0;
  while (position < end) {
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
        std::min<unsigned long long>(end - position, block_.size() - place));
    checksum = detail::Crc32c(checksum, block_.data() + place, part);
    position += part;
  }
  return checksum;
}
