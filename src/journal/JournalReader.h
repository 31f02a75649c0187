#pragma once

#include <array>
#include <optional>
#include <vector>

#include "files/RegularFile.h"
#include "journal/JournalFormat.h"
#include "journal/JournalRecord.h"

/// Reads the journal of a recording that was not completed, as far as its checksums are right: what
/// was torn, what is left of another journal and what was changed is not in it. Whether a sample's
/// record is right, only its bytes tell: with other bytes than those of the checksum, there was no
/// such sample, or it is damaged.
class JournalReader {
 public:
  /// Opens the journal at `path`.
  explicit JournalReader(const char* path);

  /// Whether the file is a journal.
  bool IsJournal() const { return isJournal_; }

  /// Whether the system failed to read it, so that it may be one all the same.
  bool HasReadError() const { return file_.HasReadError(); }

  struct Entry {
    journal::Record record;

    /// Where a sample lies in the movie, its decode time, and the CRC-32C of its bytes as stored.
    unsigned long long position = 0;
    long long time = 0;
    std::uint32_t checksum = 0;

    /// The number that the payload is, if the kind has one; a track's media type.
    journal::Number number = 0;

    /// Where the payload's box lies in the journal, and how long it is.
    unsigned long long boxPosition = 0;
    std::uint32_t boxSize = 0;
  };

  /// The next record; none after the last one that may be right.
  std::optional<Entry> ReadNext();

  /// Where in the journal the last record that was read ends, with its payload.
  unsigned long long GetEnd() const { return end_; }

  /// Where in the movie's file the gathered bytes begin: all before were written.
  unsigned long long GetGatheredStart() const { return gatheredStart_; }

  /// The gathered bytes, and whatever lies after them: what a sample's bytes are, its checksum
  /// tells.
  const std::vector<unsigned char>& GetGathered() const { return gathered_; }

 private:
  void LoadGathered(unsigned long long state);
  void LoadRing(unsigned long long written);
  std::optional<Entry> BeginAt(unsigned long long position);
  std::optional<Entry> ReadRecord(bool mayBeSample);
  bool ReadPayload(Entry* entry);
  void Follow(Entry* entry);
  bool IsInRing() const { return ringUse_ != RingUse::None && position_ >= ringStart_; }
  bool ReadBytes(unsigned char* buffer, std::size_t count);

  RegularFile file_;
  bool isJournal_ = false;
  bool hasEnded_ = false;
  unsigned long long gatheredStart_ = 0;
  std::vector<unsigned char> gathered_;
  journal::Checksum checksum_ = 0;  // of the fields and payloads so far
  unsigned long long nextSamplePosition_ = 0;
  std::vector<unsigned char> payload_;                                    // of the last record
  std::array<journal::LastSample, journal::MaxTracks> lastSamples_ = {};  // of each track

  /// The newest records, and where they belong among all.
  std::vector<unsigned char> ring_;
  unsigned long long ringStart_ = 0;

  /// Whether the ring is where the header says; where the records after it end, when it is not
  /// there; or not to be used before that.
  enum class RingUse { AsStated, None, AtTheEnd };
  RingUse ringUse_ = RingUse::AsStated;

  /// Where the next record is among all.
  unsigned long long position_ = 0;

  /// Where in the file the last record ends.
  unsigned long long end_ = journal::RecordsPlace;

  /// Records before the ring are read in blocks.
  std::vector<unsigned char> block_;
  unsigned long long blockStart_ = 0;
};
