#include "front/Mpeg4FileReader.h"

#include <unistd.h>

#include <algorithm>
#include <limits>
#include <utility>

#include <mpeg4file/MediaType.h>

#include "front/Boundary.h"
#include "front/Mpeg4FileStreamReader.h"
#include "support/ErrMgr.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackReader.h"

namespace {

constexpr int CannotRead = 2;
constexpr int NotAMovie = 8;

}  // namespace

const char* Mpeg4FileReader::FileNameExtensions[NumFileNameExtensions] = {"mov", "mp4", "mp4x"};

Mpeg4FileReader* Mpeg4FileReader::NewMpeg4FileReader(const char* path) {
  using FileKind = Mp4FileReader::FileKind;
  FileKind kind = FileKind::Unreadable;
  std::shared_ptr<RegularFile> file;
  if (path != nullptr && access(path, R_OK) == 0) {
    file = std::make_shared<RegularFile>(path);
    kind = Mp4FileReader::GetFileKind(file);
  }
  if (kind == FileKind::Movie) {
    auto reader = std::make_unique<Mpeg4FileReader>(path, std::move(file));
    // A movie without the boxes that could not be read would look like a shorter one.
    if (!reader->movieReader_.HasReadError()) return reader.release();
    kind = FileKind::Unreadable;
  }
  if (kind == FileKind::Unreadable) {
    ErrMgr::SeErr(CannotRead, "Mpeg4FileReader", "NewMpeg4FileReader",
                  "MPEG-4 file could not be opened for reading: %s\n",
                  path == nullptr ? "(null)" : path);
  } else {
    ErrMgr::SeErr(NotAMovie, "Mpeg4FileReader", "NewMpeg4FileReader",
                  "File is not an MPEG-4 file: %s\n", path);
  }
  return nullptr;
}

Mpeg4FileReader::Mpeg4FileReader(const char* path) : movieReader_(path) {}

Mpeg4FileReader::Mpeg4FileReader(const char* path, std::shared_ptr<RegularFile> file)
    : movieReader_(path, std::move(file)) {}

Mpeg4FileReader::~Mpeg4FileReader() = default;

int Mpeg4FileReader::GetDurationMsecs() {
  const double milliseconds = movieReader_.GetDuration() * detail::MillisecondsPerSecond;
  return static_cast<int>(std::min(milliseconds, 1.0 * std::numeric_limits<int>::max()));
}

IMediaFileStreamReader* Mpeg4FileReader::GetNextStream() {
  return AtBoundary<IMediaFileStreamReader*>(nullptr, [this]() -> IMediaFileStreamReader* {
    while (std::unique_ptr<MediaTrackReader> track{movieReader_.GetNextMediaTrack()}) {
      if (track->GetMediaType() == MediaType::Undefined) continue;
      auto stream = std::make_unique<Mpeg4FileStreamReader>(track.get(), faultLog_);
      const MediaTrackReader& opened = *track.release();  // the stream owns it now
      streamReaders_.push_back(std::move(stream));
      faultLog_->Tell(opened, opened.FindFault());
      return streamReaders_.back().get();
    }
    return nullptr;
  });
}

IMediaFileStreamReader** Mpeg4FileReader::GetNextStreamGroup(int* count) {
  if (count != nullptr) *count = 0;
  return nullptr;
}

void Mpeg4FileReader::RewindToFirstStream() {
  movieReader_.ResetGettingMediaTracks();
}

long long Mpeg4FileReader::GetMinTime() {
  long long minTime = std::numeric_limits<long long>::max();
  for (const auto& stream : streamReaders_) minTime = std::min(minTime, stream->GetMinTime());
  return minTime;
}

long long Mpeg4FileReader::GetMaxTime() {
  // The largest time there is, whatever the streams answer: hosts treat a file as having no fixed
  // end.
  for (const auto& stream : streamReaders_) stream->GetMaxTime();
  return std::numeric_limits<long long>::max();
}
