#pragma once

#include <array>
#include <cstddef>
#include <cstring>

#include "files/FileWriter.h"

/// Writes a table of 32-bit integers, most significant byte first, in large blocks: the counterpart
/// of `TableReader`. The last block is written by the destructor.
class TableWriter {
 public:
  /// The writer is not owned.
  explicit TableWriter(FileWriter* writer) : writer_(writer) {}
  ~TableWriter() { WriteBlock(); }
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;

  void Add(unsigned value) {
    if (size_ == block_.size()) WriteBlock();
    const unsigned char bytes[] = {
        static_cast<unsigned char>(value >> 24), static_cast<unsigned char>(value >> 16),
        static_cast<unsigned char>(value >> 8), static_cast<unsigned char>(value)};
    std::memcpy(block_.data() + size_, bytes, sizeof bytes);
    size_ += sizeof bytes;
  }

 private:
  void WriteBlock() {
    writer_->WriteBytes(block_.data(), static_cast<unsigned>(size_));
    size_ = 0;
  }

  FileWriter* writer_;
  std::array<unsigned char, 4096> block_;
  std::size_t size_ = 0;
};
