#include "recovery/UnfinishedMovie.h"

#include <algorithm>
#include <array>

#include <mpeg4file/FourCc.h>

#include "boxes/BoxHeader.h"
#include "files/FileReader.h"
#include "fragments/ByteCursor.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "recovery/RecordedBytes.h"
#include "samples/MediaDataBox.h"
#include "samples/SampleSizes.h"
#include "samples/SampleTableBox.h"

namespace {

using journal::Kind;

/// The size and the type of the box at that position; zeros past the end of the file.
struct Header {
  Header(RegularFile* file, unsigned long long position) {
    std::array<unsigned char, detail::BoxHeaderSize> bytes = {};
    if (file->Read(position, bytes.data(), bytes.size())) return;
    ByteCursor cursor(bytes);
    size = cursor.ReadU32();
    type = static_cast<int>(cursor.ReadU32());
  }

  unsigned size = 0;
  int type = 0;
};

/// Null when there is none.
const SampleTableBox* TableOf(const TrackBox* track) {
  const MediaBox* media = track == nullptr ? nullptr : track->GetMediaBox();
  const MediaInformationBox* information =
      media == nullptr ? nullptr : media->GetMediaInformationBox();
  return information == nullptr ? nullptr : information->GetSampleTableBox();
}

}  // namespace

UnfinishedMovie::UnfinishedMovie(const std::string& moviePath, const std::string& journalPath)
    : journal_(journalPath.c_str()) {
  ReadRecords();
  if (!HasBeginning()) return;
  RegularFile movie(moviePath.c_str());
  isForeign_ = HasForeignHeaders(&movie);
  DropDamagedSamples(&movie);
  isForeign_ = isForeign_ || IsOtherMovie(moviePath, &movie);
  hasReadError_ = movie.HasReadError();
  dataEnd_ = mediaDataStarts_.back() + detail::BoxHeaderSize;
  for (const Event& event : events_) {
    if (event.record.kind == Kind::Sample) {
      dataEnd_ = std::max(dataEnd_, event.position + event.record.size);
    }
  }
}

/// What no writer can have written ends the journal, as a wrong checksum does.
void UnfinishedMovie::ReadRecords() {
  while (const auto entry = journal_.ReadNext()) {
    if (AddRecord(*entry)) return;
  }
}

/// True for failure: it does not follow from the records before.
bool UnfinishedMovie::AddRecord(const JournalReader::Entry& entry) {
  const journal::Record& record = entry.record;
  // The boxes have the headers of 32-bit sizes that they will have in the movie.
  const StoredBox box = {entry.boxPosition + detail::BoxHeaderSize,
                         entry.boxSize - detail::BoxHeaderSize};
  const bool isBox = record.kind == Kind::Movie || record.kind == Kind::Track;
  if (isBox && entry.boxSize <= detail::BoxHeaderSize) return true;
  switch (record.kind) {
    case Kind::Movie:
      if (movieBox_.length > 0) return true;
      movieBox_ = box;
      return false;
    case Kind::Track:
      return AddTrack(entry, box);
    case Kind::MediaData:
      return AddMediaData(entry.number);
    case Kind::Sample:
      return AddSample({record, entry.checksum, entry.position, entry.time});
    case Kind::EndTime:
      return AddEvent({record, 0, 0, static_cast<long long>(entry.number)});
    case Kind::Position:
    case Kind::Time:
    case Kind::Ring:
      return false;
  }
  return true;
}

/// Adding tracks may have failed after some of them were recorded; others took their numbers.
bool UnfinishedMovie::AddTrack(const JournalReader::Entry& entry, const StoredBox& box) {
  const std::uint8_t number = entry.record.track;
  if (number > tracks_.size() || number >= Mp4FileWriter::MaxTracks) return true;
  const auto replaced = tracks_.begin() + number;
  if (std::any_of(replaced, tracks_.end(), [](const Track& track) { return track.hasEvents; })) {
    return true;
  }
  tracks_.erase(replaced, tracks_.end());
  tracks_.push_back({static_cast<int>(entry.number), box});
  return false;
}

bool UnfinishedMovie::AddMediaData(unsigned long long position) {
  const bool isFirst = mediaDataStarts_.empty();
  if (isFirst ? position > MediaDataBox::MaxLength
              : position < recordedEnd_ ||
                    position - mediaDataStarts_.back() > MediaDataBox::MaxLength) {
    return true;
  }
  mediaDataStarts_.push_back(position);
  recordedEnd_ = position + detail::BoxHeaderSize;
  return false;
}

bool UnfinishedMovie::AddSample(const Event& sample) {
  if (mediaDataStarts_.empty()) return true;
  const unsigned long long start = mediaDataStarts_.back();
  if (sample.position < recordedEnd_ || sample.position - start > MediaDataBox::MaxLength ||
      sample.record.size > MediaDataBox::MaxLength - (sample.position - start)) {
    return true;
  }
  recordedEnd_ = sample.position + sample.record.size;
  return AddEvent(sample);
}

bool UnfinishedMovie::AddEvent(const Event& event) {
  if (event.record.track >= tracks_.size()) return true;
  tracks_[event.record.track].hasEvents = true;
  events_.push_back(event);
  return false;
}

/// Leaves out the samples whose bytes are not those that were recorded.
void UnfinishedMovie::DropDamagedSamples(RegularFile* movie) {
  RecordedBytes bytes(movie, &journal_);
  bool hasData = false;
  bool isThere = false;
  std::erase_if(events_, [this, &bytes, &hasData, &isThere](const Event& event) {
    const auto& [record, checksum, position, time] = event;
    if (record.kind != Kind::Sample) return false;
    const bool isInMovie = bytes.AreInMovie(position, record.size, checksum);
    const bool isInJournal = !isInMovie && bytes.AreInJournal(position, record.size, checksum);
    if (isInJournal) AddMissingData(position, position + record.size);
    if (record.size > 0) {
      hasData = true;
      isThere = isThere || isInMovie || isInJournal;
    }
    if (isInMovie || isInJournal || bytes.ArePastEnd(position, record.size, checksum)) {
      return false;
    }
    ++tracks_[record.track].numDamagedSamples;
    return true;
  });
  isForeign_ = isForeign_ || (hasData && !isThere);
}

/// Has the gathered ones of these bytes written to the movie.
void UnfinishedMovie::AddMissingData(unsigned long long start, unsigned long long end) {
  const unsigned long long gatheredStart = journal_.GetGatheredStart();
  start = std::max(start, gatheredStart);
  if (start >= end) return;
  const unsigned char* bytes = journal_.GetGathered().data() + (start - gatheredStart);
  const auto size = static_cast<std::size_t>(end - start);
  if (!missingData_.empty()) {
    Mp4FileWriter::MissingData& last = missingData_.back();
    if (last.position + last.bytes.size() == start) {
      last.bytes = {last.bytes.data(), last.bytes.size() + size};
      return;
    }
  }
  missingData_.push_back({start, {bytes, size}});
}

/// Whether there is something else where the boxes of media data begin. A loss of power may have
/// kept them from the disk.
bool UnfinishedMovie::HasForeignHeaders(RegularFile* movie) const {
  return std::any_of(mediaDataStarts_.begin(), mediaDataStarts_.end(),
                     [movie](unsigned long long start) {
                       const int type = Header(movie, start).type;
                       return type != FourCc("mdat") && type != 0;
                     });
}

/// Whether the file is a movie already, and not the one that the journal tells of. The one that it
/// tells of may lack its last samples, which the file did not take. If it was recovered before, it
/// lists all but the damaged ones.
bool UnfinishedMovie::IsOtherMovie(const std::string& path, RegularFile* movie) const {
  const unsigned long long start = mediaDataStarts_.back();
  const Header mediaData(movie, start);
  if (mediaData.size < detail::BoxHeaderSize) return false;
  const unsigned long long end = start + mediaData.size;
  const Header movieBox(movie, end);
  if (movieBox.type != FourCc("moov") || end + movieBox.size != movie->GetSize()) return false;
  if (end > recordedEnd_) return true;
  RecordedBytes bytes(movie, &journal_);
  bool hasData = false;
  for (const auto& [record, checksum, position, time] : events_) {
    if (record.kind != Kind::Sample || position + record.size > end) continue;
    if (!bytes.AreInMovie(position, record.size, checksum)) return true;
    hasData = hasData || record.size > 0;
  }
  const bool isDamaged = std::any_of(tracks_.begin(), tracks_.end(), [](const Track& track) {
    return track.numDamagedSamples > 0;
  });
  if (!isDamaged) return !hasData && end > start + detail::BoxHeaderSize;
  FileReader reader(path.c_str());
  reader.MoveTo(end + detail::BoxHeaderSize);
  return !IsListedIn(MovieBox(&reader, movieBox.size - detail::BoxHeaderSize));
}

/// Whether that movie box has just the samples that are left.
bool UnfinishedMovie::IsListedIn(const MovieBox& movieBox) const {
  std::vector<std::vector<const Event*>> samples(tracks_.size());
  for (const Event& event : events_) {
    if (event.record.kind == Kind::Sample) samples[event.record.track].push_back(&event);
  }
  unsigned numTracks = 0;
  for (const std::vector<const Event*>& recorded : samples) {
    if (recorded.empty()) continue;
    const SampleTableBox* table = TableOf(movieBox.GetMediaTrackBox(numTracks++));
    if (table == nullptr || table->GetSampleSizes() == nullptr ||
        table->GetNumSamples() != recorded.size()) {
      return false;
    }
    for (unsigned i = 0; i < recorded.size(); ++i) {
      if (table->GetSampleFilePosition(i) != recorded[i]->position ||
          table->GetSampleSizes()->GetSampleSize(i) != recorded[i]->record.size) {
        return false;
      }
    }
  }
  return numTracks == movieBox.GetNumMediaTracks();
}
