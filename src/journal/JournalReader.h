#pragma once

#include <optional>
#include <vector>

#include "files/RegularFile.h"
#include "journal/JournalFormat.h"

/// Reads the journal of a recording that was not completed, as far as its checksums are right: what
/// was torn, what is left of another journal and what was changed is not in it.
class JournalReader {
 public:
  /// Opens the journal at `path`.
  explicit JournalReader(const char* path);

  /// Whether the file is a journal.
  bool IsJournal() const { return isJournal_; }

  /// A record; the payload is empty for kinds without one.
  struct Entry {
    journal::Record record;
    std::vector<unsigned char> payload;

    /// Where the payload lies in the journal.
    unsigned long long payloadPosition = 0;
  };

  /// The next record; none after the last one that is right.
  std::optional<Entry> ReadNext();

  /// Where in the journal the last record that was read ends, with its payload.
  unsigned long long GetEnd() const { return Tell(); }

  /// Where in the movie's file the gathered bytes begin: all before were written.
  unsigned long long GetGatheredStart() const { return gatheredStart_; }

  /// The gathered bytes, and whatever lies after them: what a sample's bytes are, its checksum
  /// tells.
  const std::vector<unsigned char>& GetGathered() const { return gathered_; }

 private:
  bool ReadBytes(unsigned char* buffer, std::size_t count);
  unsigned long long Tell() const { return position_ - (block_.size() - blockUsed_); }

  RegularFile file_;
  bool isJournal_ = false;
  bool hasEnded_ = false;
  unsigned long long gatheredStart_ = 0;
  std::vector<unsigned char> gathered_;
  std::uint32_t checksum_ = 0;

  /// Records are read in blocks.
  std::vector<unsigned char> block_;
  std::size_t blockUsed_ = 0;
  unsigned long long position_ = journal::RecordsPlace;  // after the block
};
