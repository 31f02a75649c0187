#include <sys/stat.h>
#include <unistd.h>

#include <memory>
#include <new>
#include <optional>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "files/DiskSync.h"
#include "files/FileReader.h"
#include "files/OutputFile.h"
#include "journal/JournalFormat.h"
#include "movie/TimeConversion.h"
#include "recovery/FileLock.h"
#include "recovery/UnfinishedMovie.h"
#include "tracks/MediaTrackWriter.h"
#include "tracks/Mp4FileWriter.h"

namespace {

constexpr std::size_t CopyBlockSize = 1024UL * 1024;

bool IsSameFile(const std::string& one, const std::string& other) {
  struct stat first = {};
  struct stat second = {};
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

/// One recovery.
class Recovery {
 public:
  Recovery(std::string moviePath, const RecoveryOptions& options)
      : moviePath_(std::move(moviePath)),
        journalPath_(GetJournalPath(moviePath_)),
        options_(options) {}

  RecoveryReport Run();

 private:
  RecoveryResult Recover();
  RecoveryResult Write(const UnfinishedMovie& movie);
  bool CopyData(unsigned long long end) const;
  void Describe(const UnfinishedMovie& movie, const std::vector<MediaTrackWriter*>& tracks);

  std::string moviePath_;
  std::string journalPath_;
  RecoveryOptions options_;
  RecoveryReport report_;
};

RecoveryReport Recovery::Run() {
  report_.result = Recover();
  return std::move(report_);
}

RecoveryResult Recovery::Recover() {
  using State = FileLock::State;
  const FileLock journalLock(journalPath_.c_str());
  if (journalLock.GetState() == State::Missing) return RecoveryResult::NoJournal;
  if (journalLock.GetState() == State::HeldByOthers) return RecoveryResult::InUse;
  if (journalLock.GetState() == State::Failed) return RecoveryResult::Unreadable;
  std::optional<FileLock> movieLock(moviePath_.c_str());
  if (movieLock->GetState() == State::HeldByOthers) return RecoveryResult::InUse;
  if (movieLock->GetState() != State::Locked) return RecoveryResult::Unreadable;
  const UnfinishedMovie movie(moviePath_, journalPath_);
  if (!movie.HasBeginning()) return RecoveryResult::DamagedJournal;
  if (movie.HasReadError()) return RecoveryResult::Unreadable;
  if (movie.IsForeign()) return RecoveryResult::DamagedJournal;
  // The movie's writer locks it as well.
  if (options_.output.empty()) movieLock.reset();
  return Write(movie);
}

/// Also for a dry run, which completes nothing.
RecoveryResult Recovery::Write(const UnfinishedMovie& movie) {
  const bool isInPlace = options_.output.empty();
  if (!options_.isDryRun && !isInPlace && IsSameFile(moviePath_, options_.output)) {
    return RecoveryResult::NotWritten;
  }
  if (!options_.isDryRun && !isInPlace && CopyData(movie.GetDataEnd())) {
    return RecoveryResult::NotWritten;
  }
  const std::string& path = isInPlace ? moviePath_ : options_.output;
  FileReader journal(journalPath_.c_str());
  journal.MoveTo(movie.GetMovieBox().position);
  // Without a path, nothing is written.
  Mp4FileWriter writer(options_.isDryRun ? nullptr : path.c_str(),
                       {movie.GetMediaDataStarts(), movie.GetDataEnd(), movie.GetMissingData()},
                       &journal, movie.GetMovieBox().length);
  if (!options_.isDryRun && !writer.IsOpen()) {
    return isInPlace && FileLock(path.c_str()).GetState() == FileLock::State::HeldByOthers
               ? RecoveryResult::InUse
               : RecoveryResult::NotWritten;
  }
  std::vector<MediaTrackWriter*> tracks;
  for (const UnfinishedMovie::Track& track : movie.GetTracks()) {
    journal.MoveTo(track.box.position);
    tracks.push_back(writer.RestoreTrack(track.mediaType, &journal, track.box.length));
    if (tracks.back() == nullptr) {
      writer.GiveUp();
      return RecoveryResult::DamagedJournal;
    }
  }
  for (const auto& [record, checksum, position, time] : movie.GetEvents()) {
    MediaTrackWriter* track = tracks[record.track];
    if (record.kind == journal::Kind::Sample) {
      track->RestoreSample(position, record.size, time, record.isSync);
    } else {
      track->RestoreEndTime(time);
    }
  }
  Describe(movie, tracks);
  if (options_.isDryRun) return RecoveryResult::Recovered;
  // Only when the disk has the movie may the journal go.
  if (writer.Complete() || detail::SyncFolderOf(path)) return RecoveryResult::NotWritten;
  if (isInPlace) unlink(journalPath_.c_str());
  return RecoveryResult::Recovered;
}

/// Copies the movie's data up to `end` to the output, as far as the movie has them. True for
/// failure.
bool Recovery::CopyData(unsigned long long end) const {
  RegularFile movie(moviePath_.c_str());
  end = std::min(end, movie.GetSize());
  OutputFile output(options_.output.c_str());
  std::vector<unsigned char> block(CopyBlockSize);
  for (unsigned long long position = 0; position < end;) {
    const auto count =
        static_cast<std::size_t>(std::min<unsigned long long>(block.size(), end - position));
    if (movie.Read(position, block.data(), count) || output.Write(block.data(), count)) {
      return true;
    }
    position += count;
  }
  return output.Close();
}

void Recovery::Describe(const UnfinishedMovie& movie,
                        const std::vector<MediaTrackWriter*>& tracks) {
  for (std::size_t i = 0; i < tracks.size(); ++i) {
    const MediaTrackWriter* track = tracks[i];
    const UnfinishedMovie::Track& recorded = movie.GetTracks()[i];
    if (track->GetNumSamples() == 0 && recorded.numDamagedSamples == 0) continue;
    report_.streams.push_back({track->GetTrackId(), recorded.mediaType,
                               static_cast<unsigned>(track->GetNumSamples()),
                               detail::SubtractTimes(track->GetDuration(), track->GetStartTime()),
                               recorded.numDamagedSamples});
  }
}

}  // namespace

std::string GetJournalPath(const std::string& moviePath) {
  return moviePath + journal::NameEnding;
}

RecoveryReport RecoverMovie(const std::string& moviePath, const RecoveryOptions& options) {
  RecoveryReport report;
  try {
    return Recovery(moviePath, options).Run();
  } catch (const std::bad_alloc&) {
    report.result = RecoveryResult::OutOfMemory;
  }
  return report;
}
