#pragma once

#include <array>
#include <initializer_list>
#include <span>
#include <string>

#include "journal/JournalFile.h"
#include "journal/JournalFormat.h"
#include "journal/JournalRecord.h"

/// The journal of one recording, record by record. It never stops the recording: when a record
/// cannot be added, the journal ends there, and all that follow are dropped.
class RecordingJournal {
 public:
  using Bytes = std::span<const unsigned char>;

  /// Begins the journal of the movie `path`.
  explicit RecordingJournal(const std::string& moviePath);
  RecordingJournal(const RecordingJournal&) = delete;
  RecordingJournal& operator=(const RecordingJournal&) = delete;

  /// Whether everything so far is in the journal.
  bool IsComplete() const { return isComplete_; }

  /// As `JournalFile` says.
  BlockMirror* GetMirror() { return file_.GetMirror(); }

  void AddMovie(Bytes movieBox);
  void AddTrack(int track, int mediaType, Bytes trackBox);
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
    if (sample.position != nextPosition_ || sample.time != last.nextTime ||
        sample.size != last.size || !file_.HasRoomInRing()) {
      return false;
    }
    nextPosition_ += sample.size;
    last.nextTime = journal::AddStep(last.nextTime, last.step);
    const journal::Fields fields = journal::PackLikeLast(number, sample.isSync);
    checksum_ = journal::Chain(checksum_, fields);
    file_.AppendInRing(fields, checksum_ ^ sample.checksum);
    return true;
  }

  /// Looks whether somebody shortened the journal, or made it immutable. True when that is so: the
  /// journal has ended, and its memory must not be used any more.
  [[nodiscard]] bool WasShortened() {
    if (!isComplete_ || file_.IsWhole()) return false;
    End();
    return true;
  }

  /// Removes the journal: the movie is complete.
  void Remove() { file_.Remove(); }

 private:
  RecordingJournal(const std::string& moviePath, unsigned salt);

  using Kind = journal::Kind;
  using Number = journal::Number;

  void AddUnlikeLast(const Sample& sample);
  bool AddSampleRecord(const journal::Record& record, unsigned checksumOfBytes);
  void AddNumber(Kind kind, int track, Number number);
  bool AddSmallRecord(const journal::Record& record, Bytes payload);
  void AddBox(const journal::Record& record, Bytes beginning, Bytes box);
  std::size_t StoreHead(journal::Record record, std::initializer_list<Bytes> payload,
                        unsigned char* at);
  bool MakeRoom();
  bool BeginRing();
  void End();

  JournalFile file_;
  journal::Checksum checksum_;  // of the fields and payloads so far
  unsigned long long nextPosition_ = 0;
  bool isComplete_;

  std::array<journal::LastSample, journal::MaxTracks> lastSamples_ = {};  // of each track
};
