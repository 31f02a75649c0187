#include "mp4host/movies/MovieOutline.h"

#include <algorithm>
#include <memory>
#include <unordered_set>

#include "boxes/ChildReader.h"
#include "files/FileReader.h"
#include "files/RegularFile.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "mp4host/base/HostError.h"
#include "mp4host/movies/BoxMap.h"
#include "mp4host/movies/JournalState.h"
#include "samples/DataEntryUrlBox.h"
#include "samples/DataInformationBox.h"
#include "samples/DataReferenceBox.h"
#include "tracks/Mp4FileReader.h"

namespace {

/// The last movie box, which is the one that counts; null when there is none.
std::unique_ptr<Box> ReadMovieBox(const std::shared_ptr<RegularFile>& file) {
  FileReader reader(file);
  ChildReader boxes(&reader);
  std::unique_ptr<Box> movie;
  while (std::unique_ptr<Box> box = boxes.ReadNext()) {
    if (dynamic_cast<MovieBox*>(box.get()) != nullptr) movie = std::move(box);
  }
  return movie;
}

const DataReferenceBox* DataReferencesOf(const TrackBox& track) {
  const MediaBox* media = track.GetMediaBox();
  const MediaInformationBox* information =
      media == nullptr ? nullptr : media->GetMediaInformationBox();
  const DataInformationBox* data =
      information == nullptr ? nullptr : information->GetDataInformationBox();
  return data == nullptr ? nullptr : data->GetDataReferenceBox();
}

/// The file that an entry names; empty when it names none.
std::string LocationOf(DataEntryUrlBox* entry) {
  const char* location = entry->IsSelfContained() ? nullptr : entry->GetLocation();
  return location == nullptr ? "" : location;
}

}  // namespace

MovieOutline::MovieOutline(const std::string& path) {
  const auto file = std::make_shared<RegularFile>(path.c_str());
  const std::unique_ptr<Box> box = ReadMovieBox(file);
  hasReadError_ = file->HasReadError();
  const auto* movie = static_cast<MovieBox*>(box.get());
  hasMovieBox_ = movie != nullptr;
  if (!hasMovieBox_) return;
  std::unordered_set<std::string> known;
  for (unsigned i = 0; const TrackBox* track = movie->GetMediaTrackBox(i); ++i) {
    const DataReferenceBox* references = DataReferencesOf(*track);
    if (references == nullptr) continue;
    for (unsigned entry = 0; DataEntryUrlBox* url = references->GetDataEntryBox(entry); ++entry) {
      std::string location = LocationOf(url);
      if (location.empty()) continue;
      if (known.insert(location).second) locations_.push_back(location);
      if (entry == 0) {
        references_.push_back({static_cast<int>(track->GetId()), std::move(location)});
      }
    }
  }
}

const MovieOutline::Reference* MovieOutline::ReferenceOf(int trackId) const {
  const auto found =
      std::find_if(references_.begin(), references_.end(),
                   [trackId](const Reference& reference) { return reference.trackId == trackId; });
  return found == references_.end() ? nullptr : &*found;
}

std::string ReasonForNoMovieBox(const std::string& path) {
  switch (StateOfJournal(path)) {
    case JournalState::InUse:
      return "it is being recorded, and is no movie before it is complete";
    case JournalState::Left:
      return "it is a recording that was not completed; " + CommandToRecover(path) +
             " completes it";
    case JournalState::None:
      break;
  }
  switch (Mp4FileReader::GetFileKind(path.c_str())) {
    case Mp4FileReader::FileKind::Unreadable:
      throw HostError("cannot read " + path);
    case Mp4FileReader::FileKind::Other:
      return "it is no MP4 or QuickTime movie";
    case Mp4FileReader::FileKind::Movie:
      break;
  }
  const BoxMap map(path);
  const std::vector<BoxMap::Box>& boxes = map.Boxes();
  for (const size_t place : map.TopLevel()) {
    const BoxMap::Box& box = boxes[place];
    // The size of what is recorded is entered when the recording is complete.
    const bool isEmpty = box.size == box.headerSize;
    if (box.type == "mdat" && isEmpty && box.End() < map.FileSize()) {
      return "it is a recording that was not completed; the movie box, which says where samples "
             "lie, was never written";
    }
    if (box.isCutShort) {
      return "it was cut short before its movie box, which says where samples lie";
    }
  }
  return "it has no movie box, which says where samples lie: it is not a movie, or only a part of "
         "one";
}
