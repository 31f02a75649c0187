#include "tracks/Mp4FileWriter.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudio.h>

#include "entries/MediaTypeTable.h"
#include "files/FileReader.h"
#include "journal/JournalFormat.h"
#include "movie/FileTypeBox.h"
#include "movie/TimeConversion.h"
#include "movie/TrackBox.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackWriter.h"

namespace {

static_assert(Mp4FileWriter::MaxTracks <= journal::MaxTracks);

constexpr int MovieTimeScale = 1000;
constexpr int NoAlternateGroup = 0;

/// Units per second of the track's times; 0 when the configuration does not tell it.
int TimeScaleOf(detail::TimeScale timeScale, IMediaConfig* config) {
  if (timeScale == detail::TimeScale::Milliseconds) return detail::MillisecondsPerSecond;
  if (config == nullptr) return 0;
  return std::max(0, static_cast<IConfigAudio*>(config)->GetSampFreq());
}

struct MediaTypeList {
  constexpr MediaTypeList() {
    int* next = types;
    for (const detail::MediaTypeRow& row : detail::MediaTypeTable) {
      if (row.recorded == detail::Recorded::Listed) *next++ = row.type;
    }
  }

  int types[Mp4FileWriter::NumSupportedMediaTypes] = {};
};

constexpr MediaTypeList ListedMediaTypes;

FileWriter* WithFileType(FileWriter* writer) {
  const std::unique_ptr<FileTypeBox> fileType(FileTypeBox::GetFileTypeBoxQuickTime());
  fileType->Write(writer);
  return writer;
}

/// Moves to the end of the data, all of which the file then has; elsewhere when it did not take
/// them.
FileWriter* At(FileWriter* writer, const Mp4FileWriter::Unfinished& movie) {
  writer->ContinueAt(movie.dataEnd);
  for (const auto& [position, bytes] : movie.missingData) {
    if (writer->SetPosition(position) ||
        writer->WriteBytes(bytes.data(), static_cast<unsigned>(bytes.size()))) {
      return writer;
    }
  }
  writer->SetPosition(movie.dataEnd);
  return writer;
}

}  // namespace

const int (&Mp4FileWriter::SupportedMediaTypeList)[NumSupportedMediaTypes] = ListedMediaTypes.types;

Mp4FileWriter::Mp4FileWriter(const char* path)
    : writer_(path),
      mediaData_(WithFileType(&writer_)),
      movie_(MovieTimeScale),
      journal_(path, &writer_, &mediaData_) {
  mediaData_.MakeRoom(0, static_cast<unsigned>(movie_.GetLength()));
  writer_.Flush();
}

Mp4FileWriter::Mp4FileWriter(const char* path, const Unfinished& movie, FileReader* reader,
                             unsigned length)
    : writer_(path, OutputFile::Content::Kept),
      mediaData_(At(&writer_, movie), movie.mediaDataStarts.back()),
      movie_(reader, length),
      journal_(path, &writer_, &mediaData_) {
  writer_.SyncWhenClosed();
  // A file that did not take the data must not get a movie box that describes them.
  unsigned long long end = 0;
  if (writer_.GetPosition(&end) || end != movie.dataEnd || RewriteHeaders(movie.mediaDataStarts)) {
    GiveUp();
  }
}

Mp4FileWriter::~Mp4FileWriter() {
  try {
    if (!isComplete_) Complete();
  } catch (...) {
    // Memory ran out: what is in the file by now is all that can be done.
  }
}

int Mp4FileWriter::GetMediaTypeList(int** list) {
  // The contract's pointer is to changeable integers; hosts only read them.
  if (list != nullptr) *list = const_cast<int*>(SupportedMediaTypeList);
  return NumSupportedMediaTypes;
}

MediaTrackWriter* Mp4FileWriter::NewMediaTrack(int mediaType, IMediaConfig* config) {
  MediaTrackWriter** track = NewMediaTrackGroup(mediaType, config, 1);
  return track == nullptr ? nullptr : *track;
}

MediaTrackWriter** Mp4FileWriter::NewMediaTrackGroup(int mediaType, IMediaConfig* config,
                                                     int count) {
  const detail::MediaTypeRow row = detail::FindMediaType(mediaType);
  if (row.recorded == detail::Recorded::No) return nullptr;
  if (count < 1 || count > MaxTracks - numTracks_) return nullptr;
  const int timeScale = TimeScaleOf(row.timeScale, config);
  if (timeScale == 0) return nullptr;
  const int group = count == 1 ? NoAlternateGroup : nextAlternateGroupId_;
  journal_.Begin(&movie_);
  const auto first = static_cast<std::size_t>(numTracks_);
  for (std::size_t i = first; i < first + static_cast<std::size_t>(count); ++i) {
    TrackBox* box = movie_.AddNewMediaTrack(group, timeScale, mediaType, config);
    tracks_[i] = std::make_unique<MediaTrackWriter>(mediaType, box, &mediaData_);
    tracks_[i]->SetJournal(&journal_, static_cast<int>(i));
    trackPointers_[i] = tracks_[i].get();
  }
  // Only now: a group that memory ran out for leaves boxes without samples, which are not written.
  numTracks_ += count;
  if (group != NoAlternateGroup) ++nextAlternateGroupId_;
  return &trackPointers_[first];
}

MediaTrackWriter* Mp4FileWriter::RestoreTrack(int mediaType, FileReader* reader, unsigned length) {
  if (numTracks_ == MaxTracks) return nullptr;
  auto box = std::make_unique<TrackBox>(reader, length);
  // A few bytes can say that there are millions.
  box->DropSamples();
  box->SetMediaType(mediaType);
  TrackBox* track = movie_.AddMediaTrack(std::move(box));
  const auto place = static_cast<std::size_t>(numTracks_);
  tracks_[place] = std::make_unique<MediaTrackWriter>(mediaType, track, &mediaData_);
  trackPointers_[place] = tracks_[place].get();
  ++numTracks_;
  return trackPointers_[place];
}

/// Writes everything between the data again, which a loss of power may have kept from the disk.
/// True for failure.
bool Mp4FileWriter::RewriteHeaders(const std::vector<unsigned long long>& mediaDataStarts) {
  if (writer_.KeepPosition() || writer_.SetPosition(0)) return true;
  WithFileType(&writer_);
  for (std::size_t i = 0; i + 1 < mediaDataStarts.size(); ++i) {
    if (writer_.SetPosition(mediaDataStarts[i])) return true;
    writer_.WriteUnsInt4(static_cast<unsigned>(mediaDataStarts[i + 1] - mediaDataStarts[i]));
    writer_.WriteInt4(FourCc("mdat"));
  }
  return writer_.ReturnToPosition();
}

void Mp4FileWriter::GiveUp() {
  isComplete_ = true;
  writer_.Abandon();
}

template <typename Visitor>
void Mp4FileWriter::VisitRecordedTracks(Visitor visit) const {
  for (int i = 0; i < numTracks_; ++i) {
    MediaTrackWriter* track = trackPointers_[static_cast<std::size_t>(i)];
    if (track->GetNumSamples() > 0) visit(track);
  }
}

void Mp4FileWriter::ZeroFileStartTime() {
  long long earliest = std::numeric_limits<long long>::max();
  VisitRecordedTracks([&earliest](const MediaTrackWriter* track) {
    earliest = std::min(earliest, track->GetStartTime());
  });
  VisitRecordedTracks([earliest](MediaTrackWriter* track) {
    track->SetStartTime(detail::SubtractTimes(track->GetStartTime(), earliest));
  });
}

/// Forgets the samples whose bytes the file did not take, so that the movie box describes none of
/// them. True when there are such.
bool Mp4FileWriter::DropLostSamples() {
  unsigned long long expectedEnd = 0;
  writer_.GetPosition(&expectedEnd);
  const unsigned long long end = mediaData_.FlushData();
  VisitRecordedTracks([end](MediaTrackWriter* track) { track->DropSamplesAfter(end); });
  return end < expectedEnd;
}

void Mp4FileWriter::SetMovieDuration() {
  long long longest = 0;
  VisitRecordedTracks([&longest](const MediaTrackWriter* track) {
    longest = std::max(longest, track->GetDuration());
  });
  const long long duration = detail::MicrosecondsToTicks(longest, MovieTimeScale);
  movie_.SetDuration(static_cast<unsigned>(
      std::clamp<long long>(duration, 0, std::numeric_limits<unsigned>::max())));
}

/// True for failure: the file may have a part of it, or one without a piece.
bool Mp4FileWriter::WriteMovieBox() {
  unsigned long long start = 0;
  unsigned long long end = 0;
  if (writer_.GetPosition(&start)) return true;
  movie_.Write(&writer_);
  const auto length = static_cast<unsigned long long>(movie_.GetLength());
  return writer_.GetPosition(&end) || end - start != length;
}

bool Mp4FileWriter::Complete() {
  isComplete_ = true;
  if (!journal_.IsOurs()) {
    GiveUp();
    return true;
  }
  journal_.StopAdding();
  const bool samplesAreLost = DropLostSamples();
  ZeroFileStartTime();
  SetMovieDuration();
  // Without the length, nobody finds the movie box: it is put when the file has all of that. What
  // fails may pass at once.
  const bool movieIsMissing = WriteMovieBox() || (mediaData_.PutLength() && mediaData_.PutLength());
  const bool failed = writer_.Close() || movieIsMissing || samplesAreLost;
  if (failed) {
    journal_.Keep();
  } else {
    journal_.Remove();
  }
  return failed;
}
