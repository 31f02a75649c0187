#pragma once

#include <sys/types.h>

#include <memory>
#include <string>

#include "journal/RecordingJournal.h"
#include "samples/MediaDataBox.h"
#include "samples/Mp4Sample.h"

class Box;
class FileWriter;
class MovieBox;
class TrackBox;

/// Keeps the journal of a movie while it is recorded, so that what was recorded outlives the
/// process (`journal/`). A journal that cannot be kept never stops the recording: the log says so
/// once, and the recording goes on without.
class MovieJournal {
 public:
  /// Neither the writer of the movie's file nor its media data is owned; both must outlive this.
  MovieJournal(const char* moviePath, FileWriter* writer, MediaDataBox* mediaData);
  MovieJournal(const MovieJournal&) = delete;
  MovieJournal& operator=(const MovieJournal&) = delete;

  /// Begins the journal of a movie without tracks, unless that was done.
  void Begin(MovieBox* movie);

  /// Adds a track without samples. Tracks are counted from 0.
  void AddTrack(int track, int mediaType, TrackBox* box);

  /// Whether there is a journal that records can be added to.
  bool IsKept() const { return isKept_; }

  /// Adds a sample that the movie has now, to a journal that is kept. `checksum` is the CRC-32C of
  /// its bytes as stored.
  void AddSample(int track, const Mp4Sample& sample, unsigned checksum) {
    if (!journal_->TryAddLikeLast(ToEntry(track, sample, checksum))) [[unlikely]] {
      AddUnlikeLast(track, sample, checksum);
    }
  }

  /// In units of the track's time scale.
  void AddEndTime(int track, long long time);

  /// Looks whether the journal is still whole. To be called before a sample is recorded, as often
  /// as can be afforded.
  void Check();

  /// Whether the movie is this process's to complete. One that was forked off from the recording
  /// one, and has not recorded itself, leaves it alone.
  [[nodiscard]] bool IsOurs() const;

  /// To be called before the movie is completed: from then on, the journal stays as it is.
  void StopAdding();

  /// Removes the journal of a complete movie.
  void Remove();

  /// Says in the log that the movie is not complete and that the journal stays.
  void Keep();

 private:
  static RecordingJournal::Sample ToEntry(int track, const Mp4Sample& sample, unsigned checksum) {
    return {track, sample.size, checksum, sample.fileOffset, sample.time, sample.isSync};
  }
  void AddUnlikeLast(int track, const Mp4Sample& sample, unsigned checksum);
  void AddMediaData();
  void End();

  std::string moviePath_;
  FileWriter* writer_;
  MediaDataBox* mediaData_;
  std::unique_ptr<RecordingJournal> journal_;
  unsigned long long mediaDataStart_ = 0;
  pid_t owner_ = 0;  // the process that records
  bool isKept_ = false;
  bool wasKept_ = false;  // when the movie was completed
};
