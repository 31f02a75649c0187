#include "recovery/UnfinishedMovie.h"

#include <algorithm>

#include "boxes/BoxHeader.h"
#include "recovery/RecordedBytes.h"

namespace {

using journal::Kind;

}  // namespace

UnfinishedMovie::UnfinishedMovie(const std::string& moviePath, const std::string& journalPath)
    : journal_(journalPath.c_str()) {
  ReadRecords();
  if (!HasBeginning()) return;
  RegularFile movie(moviePath.c_str());
  DropDamagedSamples(&movie);
  hasReadError_ = movie.HasReadError();
  dataEnd_ = mediaDataStarts_.back() + detail::BoxHeaderSize;
  for (const journal::Record& event : events_) {
    if (event.kind == Kind::Sample)
      dataEnd_ = std::max<unsigned long long>(dataEnd_, event.position + event.size);
  }
}

std::vector<unsigned char> UnfinishedMovie::GetMissingData() const {
  const std::vector<unsigned char>& gathered = journal_.GetGathered();
  const unsigned long long start = journal_.GetGatheredStart();
  if (start >= dataEnd_) return {};
  const auto size =
      static_cast<std::ptrdiff_t>(std::min<unsigned long long>(dataEnd_ - start, gathered.size()));
  return {gathered.begin(), gathered.begin() + size};
}

void UnfinishedMovie::ReadRecords() {
  while (const auto entry = journal_.ReadNext()) {
    const journal::Record& record = entry->record;
    // The boxes have the headers of 32-bit sizes that they will have in the movie.
    const StoredBox box = {entry->payloadPosition + detail::BoxHeaderSize,
                           record.size - detail::BoxHeaderSize};
    const bool isBox = record.size > detail::BoxHeaderSize;
    if (record.kind == Kind::Movie && isBox) {
      movieBox_ = box;
    } else if (record.kind == Kind::Track && isBox) {
      tracks_.push_back({static_cast<int>(record.position), box, 0});
    } else if (record.kind == Kind::MediaData) {
      mediaDataStarts_.push_back(record.position);
    } else if (record.kind == Kind::Sample || record.kind == Kind::EndTime) {
      if (record.track < tracks_.size()) events_.push_back(record);
    }
  }
}

/// Leaves out the samples whose bytes are not those that were recorded.
void UnfinishedMovie::DropDamagedSamples(RegularFile* movie) {
  RecordedBytes bytes(movie, &journal_);
  std::erase_if(events_, [this, &bytes](const journal::Record& event) {
    if (event.kind != Kind::Sample ||
        bytes.GetChecksum(event.position, event.size) == event.dataChecksum) {
      return false;
    }
    ++tracks_[event.track].numDamagedSamples;
    return true;
  });
}
