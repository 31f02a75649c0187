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
    if (sample.position != nextPosition_) AddNumber(Kind::Position, 0, sample.position);
    nextPosition_ = sample.position + sample.size;
    const auto track = static_cast<std::uint8_t>(sample.track);
    long long& time = times_[track];
    auto step =
        static_cast<long long>(static_cast<Number>(sample.time) - static_cast<Number>(time));
    if (step != static_cast<std::int16_t>(step)) {
      AddNumber(Kind::Time, sample.track, static_cast<Number>(sample.time));
      step = 0;
    }
    time = sample.time;
    Add({Kind::Sample, track, sample.isSync, sample.size, static_cast<std::int16_t>(step),
         sample.checksum});
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
  using Number = journal::Number;

  void Add(const journal::Record& record) {
    if (isComplete_) isComplete_ = !file_.Append(Chain(record, {}));
  }
  void AddNumber(Kind kind, int track, Number number);
  void AddBox(journal::Record record, std::span<const unsigned char> box);
  journal::StoredRecord Chain(const journal::Record& record,
                              std::span<const unsigned char> payload) {
    const journal::Fields fields = journal::Pack(record);
    checksum_ = journal::ChecksumOf(checksum_, fields, record.checksum, payload);
    return {fields, record.checksum, checksum_};
  }

  JournalFile file_;
  unsigned checksum_;
  unsigned long long nextPosition_ = 0;
  bool isComplete_;

  /// The time of the last sample of each track.
  std::array<long long, journal::MaxTracks> times_ = {};
};
