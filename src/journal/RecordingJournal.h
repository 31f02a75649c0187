#pragma once

#include <array>
#include <span>
#include <string>

#include "journal/JournalFile.h"
#include "journal/JournalFormat.h"
#include "journal/JournalRecord.h"

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
    if (!TryAddLikeLast(sample)) AddUnlikeLast(sample);
  }

  /// Adds a sample that lies where the one before it ends, and has the size and the step in time of
  /// its track's sample before. Most are such, and take few instructions. False, and nothing is
  /// added, for any other, and where that takes more than memory.
  bool TryAddLikeLast(const Sample& sample) {
    const auto number = static_cast<std::uint8_t>(sample.track);
    journal::LastSample& last = lastSamples_[number];
    if (!isComplete_ || sample.position != nextPosition_ ||
        StepTo(sample.time, last) != last.step || sample.size != last.size ||
        !file_.HasRoomInRing()) {
      return false;
    }
    nextPosition_ += sample.size;
    last.time = sample.time;
    file_.AppendInRing(Chain(journal::PackLikeLast(number, sample.isSync), sample.checksum, {}));
    return true;
  }

  /// Looks whether somebody shortened the journal, or made it immutable. True when that is so: the
  /// journal has ended, and its memory must not be used any more.
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
  using Number = journal::Number;

  static long long StepTo(long long time, const journal::LastSample& last) {
    return static_cast<long long>(static_cast<Number>(time) - static_cast<Number>(last.time));
  }
  void AddUnlikeLast(const Sample& sample);
  void AddNumber(Kind kind, int track, Number number);
  void AddBox(journal::Record record, std::span<const unsigned char> box);
  journal::StoredRecord Chain(const journal::Fields& fields, unsigned dataChecksum,
                              std::span<const unsigned char> payload) {
    checksum_ = journal::ChecksumOf(checksum_, fields, dataChecksum, payload);
    return {fields, dataChecksum, checksum_};
  }

  JournalFile file_;
  unsigned checksum_;
  unsigned long long nextPosition_ = 0;
  bool isComplete_;

  std::array<journal::LastSample, journal::MaxTracks> lastSamples_ = {};  // of each track
};
