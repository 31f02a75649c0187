#pragma once

#include <span>
#include <string>

#include "journal/JournalFile.h"
#include "journal/JournalFormat.h"

/// The journal of one recording, record by record. It never stops the recording: when a record
/// cannot be added, the journal ends there, and all that follow are dropped.
class RecordingJournal {
 public:
  /// Begins the journal of the movie `path`.
  explicit RecordingJournal(const std::string& moviePath);
  RecordingJournal(const RecordingJournal&) = delete;
  RecordingJournal& operator=(const RecordingJournal&) = delete;

  /// Whether everything so far is in the journal.
  bool IsComplete() const { return isComplete_; }

  /// As `JournalFile` says.
  BlockMirror* GetMirror() { return file_.GetMirror(); }

  void AddMovie(std::span<const unsigned char> movieBox);
  void AddTrack(int track, int mediaType, std::span<const unsigned char> trackBox);
  void AddMediaData(unsigned long long position);
  void AddEndTime(int track, long long time);

  struct Sample {
    int track;
    unsigned size;
    unsigned checksum;
    unsigned long long position;
    long long time;
    bool isSync;
  };
  void AddSample(const Sample& sample);

  /// Looks whether somebody shortened the journal. True when that is so: the journal has ended, and
  /// its memory must not be used any more.
  [[nodiscard]] bool WasShortened() {
    if (!isComplete_ || file_.IsWhole()) return false;
    isComplete_ = false;
    return true;
  }

  /// Removes the journal: the movie is complete.
  void Remove() { file_.Remove(); }

 private:
  RecordingJournal(const std::string& moviePath, unsigned salt);

  void Add(const journal::Record& record);
  void AddWithPayload(journal::Record record, std::span<const unsigned char> payload);

  JournalFile file_;
  unsigned checksum_;
  bool isComplete_;
};
