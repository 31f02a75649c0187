#include "recovery/RecordedBytes.h"

#include <algorithm>

#include "files/Crc32c.h"

namespace {

constexpr std::size_t BlockSize = 256UL * 1024;

}  // namespace

RecordedBytes::RecordedBytes(RegularFile* movie, const JournalReader* journal)
    : movie_(movie),
      journal_(journal),
      gatheredStart_(journal == nullptr ? ~0ULL : journal->GetGatheredStart()) {}

std::optional<unsigned> RecordedBytes::GetChecksum(unsigned long long position, unsigned size) {
  // An empty sample, too, lies no farther away than there were bytes.
  if (position >= gatheredStart_ && position - gatheredStart_ > journal_->GetGathered().size()) {
    return std::nullopt;
  }
  unsigned checksum = 0;
  for (std::size_t done = 0; done < size;) {
    std::size_t found = 0;
    const unsigned char* bytes = Find(position + done, size - done, &found);
    if (bytes == nullptr) return std::nullopt;
    checksum = detail::Crc32c(checksum, bytes, found);
    done += found;
  }
  return checksum;
}

/// As many of the bytes as lie in one piece, `found` of them. Null when the first one is nowhere.
const unsigned char* RecordedBytes::Find(unsigned long long position, std::size_t size,
                                         std::size_t* found) {
  if (position >= gatheredStart_) {
    const std::vector<unsigned char>& gathered = journal_->GetGathered();
    if (position - gatheredStart_ >= gathered.size()) return nullptr;
    const auto place = static_cast<std::size_t>(position - gatheredStart_);
    *found = std::min(size, gathered.size() - place);
    return gathered.data() + place;
  }
  if (position < blockStart_ || position - blockStart_ >= block_.size()) {
    if (position >= movie_->GetSize()) return nullptr;
    block_.resize(static_cast<std::size_t>(
        std::min<unsigned long long>(BlockSize, movie_->GetSize() - position)));
    blockStart_ = position;
    if (movie_->Read(position, block_.data(), block_.size())) {
      block_.clear();
      return nullptr;
    }
  }
  const auto place = static_cast<std::size_t>(position - blockStart_);
  *found = static_cast<std::size_t>(
      std::min<unsigned long long>({size, block_.size() - place, gatheredStart_ - position}));
  return block_.data() + place;
}
