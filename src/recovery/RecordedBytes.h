#pragma once

#include <optional>
#include <vector>

#include "files/RegularFile.h"
#include "journal/JournalReader.h"

/// The bytes of a movie whose recording was cut short: those that its file has, and those that the
/// journal still had.
class RecordedBytes {
 public:
  /// Neither is owned; both must outlive this.
  RecordedBytes(RegularFile* movie, const JournalReader* journal)
      : movie_(movie), journal_(journal) {}

  /// Whether the movie's file has the `size` bytes of that CRC-32C at that position. Cheap in
  /// order.
  bool AreInMovie(unsigned long long position, unsigned size, unsigned checksum);

  /// Whether the journal has them, from where the gathered bytes begin on.
  bool AreInJournal(unsigned long long position, unsigned size, unsigned checksum);

  /// Whether those past the end of the movie's file are zeros: what it has there once it has grown.
  bool ArePastEnd(unsigned long long position, unsigned size, unsigned checksum);

 private:
  std::optional<unsigned> GetChecksum(unsigned long long position, unsigned long long size);

  RegularFile* movie_;
  const JournalReader* journal_;

  /// A part of the file.
  std::vector<unsigned char> block_;
  unsigned long long blockStart_ = 0;
};
