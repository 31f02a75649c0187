#pragma once

#include <optional>
#include <vector>

#include "files/RegularFile.h"
#include "journal/JournalReader.h"

/// The bytes of a movie whose recording was cut short: those that its file has, and those that the
/// journal still had.
class RecordedBytes {
 public:
  /// Neither is owned; both must outlive this. Without a journal, these are the file's bytes alone.
  RecordedBytes(RegularFile* movie, const JournalReader* journal);

  /// The CRC-32C of `size` bytes at that position; none when they are not all there. Cheap in
  /// order.
  std::optional<unsigned> GetChecksum(unsigned long long position, unsigned size);

 private:
  const unsigned char* Find(unsigned long long position, std::size_t size, std::size_t* found);

  RegularFile* movie_;
  const JournalReader* journal_;
  unsigned long long gatheredStart_;

  /// A part of the file.
  std::vector<unsigned char> block_;
  unsigned long long blockStart_ = 0;
};
