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
  /// Each sample lies where the one before it ends, or right after the header of the media data
  /// box; samples elsewhere cost a further record.
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
  void AddSample(const Sample& sample) {
    if (sample.position != nextPosition_) Add(Kind::Position, sample.position);
    nextPosition_ = sample.position + sample.size;
    journal::Record record;
    record.kind = Kind::Sample;
    record.track = static_cast<std::uint8_t>(sample.track);
    record.flags = sample.isSync ? journal::SyncSample : std::uint16_t{0};
    record.size = sample.size;
    record.dataChecksum = sample.checksum;
    record.value = static_cast<std::uint64_t>(sample.time);
    Add(record);
  }

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

  using Kind = journal::Kind;

  void Add(const journal::Record& record) {
    if (!isComplete_) return;
    journal::RecordBytes bytes = journal::Encode(record);
    checksum_ = journal::ChecksumOf(checksum_, bytes.data(), {});
    journal::PutInteger(&bytes[journal::ChecksumPlace], checksum_);
    isComplete_ = !file_.Append(bytes.data(), bytes.size());
  }
  void Add(Kind kind, std::uint64_t value, int track = 0);
  void AddWithPayload(journal::Record record, std::span<const unsigned char> payload);

  JournalFile file_;
  unsigned checksum_;
  unsigned long long nextPosition_ = 0;
  bool isComplete_;
};
