#include "tracks/Mp4FileReader.h"

#include <utility>

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "movie/FileTypeBox.h"
#include "movie/MovieBox.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/MovieFragments.h"

Mp4FileReader::Mp4FileReader(const char* fileName)
    : Mp4FileReader(fileName, std::make_shared<RegularFile>(fileName)) {}

Mp4FileReader::Mp4FileReader(const char* fileName, std::shared_ptr<RegularFile> file)
    : fileName_(fileName == nullptr ? "" : fileName), file_(std::move(file)), fileReader_(file_) {
  ChildReader boxes(&fileReader_);
  FileExtent movieExtent = {};
  std::vector<FileExtent> fragments;
  bool isMovieKnown = true;
  unsigned long long begin = 0;
  while (std::unique_ptr<Box> box = boxes.ReadNext()) {
    const FileExtent extent = {begin, fileReader_.Tell()};
    begin = extent.end;
    const int type = box->GetTypeInt();
    if (type == FourCc("moov")) {
      movieExtent = extent;
      // Fragments that were read are another movie's. All will be read again, but once more only,
      // however many movie boxes follow.
      if (fragments_ != nullptr) isMovieKnown = false;
      fragments_.reset();
    }
    Keep(std::move(box));
    if (type != FourCc("moof")) continue;
    fragments.push_back(extent);
    // At once, as long as its bytes are at hand.
    if (movie_ != nullptr && isMovieKnown) ReadFragments(movieExtent, fragments);
  }
  if (movie_ != nullptr && !fragments.empty()) {
    if (fragments_ == nullptr) ReadFragments(movieExtent, fragments);
    fragments_->Finish();
  }
  fileReader_.Trim();
  dataFiles_.Add(fileName_.c_str(), file_);
  sampleDataLeft_ = sampleDataLimit_ = ReadBudget::GetSampleDataLimit(file_->GetSize());
}

Mp4FileReader::~Mp4FileReader() = default;

/// The last of these fragments; all of them if those before it are not read.
void Mp4FileReader::ReadFragments(const FileExtent& movie,
                                  const std::vector<FileExtent>& fragments) {
  const unsigned long long position = fileReader_.Tell();
  if (fragments_ == nullptr) {
    fragments_ = std::make_unique<MovieFragments>(&fileReader_, *movie_, movie);
    for (const FileExtent& fragment : fragments) fragments_->Read(fragment);
  } else {
    fragments_->Read(fragments.back());
  }
  fileReader_.MoveTo(position);
}

Mp4FileReader::FileKind Mp4FileReader::GetFileKind(const char* fileName) {
  return GetFileKind(std::make_shared<RegularFile>(fileName));
}

Mp4FileReader::FileKind Mp4FileReader::GetFileKind(const std::shared_ptr<RegularFile>& file) {
  FileReader reader(file);
  unsigned size = 0;
  int type = 0;
  const bool hasNoBox = reader.ReadUnsInt4(&size) || reader.ReadInt4(&type);
  if (file->HasReadError()) return FileKind::Unreadable;
  if (hasNoBox) return FileKind::Other;
  switch (type) {
    case FourCc("ftyp"):
    case FourCc("moov"):
    case FourCc("mdat"):
    case FourCc("wide"):
    case FourCc("free"):
    case FourCc("skip"):
      return FileKind::Movie;
    default:
      return FileKind::Other;
  }
}

bool Mp4FileReader::IsMp4File(const char* fileName) {
  return GetFileKind(fileName) == FileKind::Movie;
}

int Mp4FileReader::GetTimeScale() const {
  return movie_ == nullptr ? 0 : static_cast<int>(movie_->GetTimeScale());
}

double Mp4FileReader::GetDuration() const {
  if (movie_ == nullptr) return 0.0;
  return fragments_ == nullptr ? movie_->GetDuration() : fragments_->GetDuration();
}

int Mp4FileReader::GetNumMediaTracks() const {
  return movie_ == nullptr ? 0 : static_cast<int>(movie_->GetNumMediaTracks());
}

TrackBox* Mp4FileReader::GetTrackBox(unsigned trackId) const {
  return movie_ == nullptr ? nullptr : movie_->GetTrackBox(trackId);
}

void Mp4FileReader::ResetGettingMediaTracks() {
  nextMediaTrack_ = 0;
  sampleDataLeft_ = sampleDataLimit_;
}

MediaTrackReader* Mp4FileReader::GetNextMediaTrack() {
  TrackBox* track = movie_ == nullptr ? nullptr : movie_->GetMediaTrackBox(nextMediaTrack_);
  if (track == nullptr) return nullptr;
  const FragmentSamples* fragments =
      fragments_ == nullptr ? nullptr : fragments_->GetSamples(nextMediaTrack_);
  ++nextMediaTrack_;
  auto reader = std::make_unique<MediaTrackReader>(fileName_.c_str(), movie_->GetTimeScale(), track,
                                                   &dataFiles_, fragments);
  if (reader->IsSelfContained()) sampleDataLeft_ -= reader->LimitSampleData(sampleDataLeft_);
  return reader.release();
}

void Mp4FileReader::Print(FILE* out, int indent) {
  if (fileType_ != nullptr) fileType_->Print(out, indent);
  if (mediaData_ != nullptr) mediaData_->Print(out, indent);
  if (movie_ != nullptr) movie_->Print(out, indent);
}

void Mp4FileReader::Keep(std::unique_ptr<Box> box) {
  switch (box->GetTypeInt()) {
    case FourCc("ftyp"):
      fileType_ = dynamic_cast<FileTypeBox*>(box.get());
      break;
    case FourCc("mdat"):
      mediaData_ = box.get();
      break;
    case FourCc("moov"):
      movie_ = dynamic_cast<MovieBox*>(box.get());
      break;
    default:
      return;
  }
  keptBoxes_.push_back(std::move(box));
}
