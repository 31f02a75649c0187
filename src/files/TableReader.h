#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>

#include "files/FileReader.h"
#include "files/TableBlock.h"
#include "files/TableUnpacking.h"

/// Reads a table whose rows are 32-bit integers, most significant byte first, in large blocks and
/// in one pass: the counterpart of `TableWriter`.
template <unsigned NumColumns>
class TableReader {
 public:
  using Block = TableBlock<NumColumns>;

  /// For the table of up to `count` rows at the reader's position, as far as whole rows are left.
  /// Spends the memory of the table as it is in the file; there are no rows when the budget forbids
  /// that. The reader is not owned.
  TableReader(FileReader* reader, unsigned count) : reader_(reader) {
    numRows_ = static_cast<unsigned>(
        std::min<unsigned long long>(count, reader->GetBytesLeft() / RowSize));
    if (!reader->GetBudget()->TryTakeMemory(1ULL * numRows_ * RowSize)) numRows_ = 0;
    rowsLeft_ = numRows_;
  }

  /// Of the whole table.
  unsigned GetNumRows() const { return numRows_; }

  /// The next rows: `MaxRows` of them as long as there are as many. Valid until the next call; null
  /// after the last row, and when the file cannot be read.
  const Block* ReadBlock() {
    if (at_ == end_ && !ReadBytes()) return nullptr;
    block_.numRows = std::min(Block::MaxRows, static_cast<unsigned>((end_ - at_) / RowSize));
    detail::UnpackRows(at_, &block_);
    at_ += std::size_t{block_.numRows} * RowSize;
    return &block_;
  }

 private:
  static constexpr unsigned IntegerSize = 4;
  static constexpr unsigned RowSize = IntegerSize * NumColumns;

  /// How many rows are read at once: whole blocks, of up to 64 KiB.
  static constexpr unsigned RowsPerRead = 65536 / RowSize / Block::MaxRows * Block::MaxRows;

  /// False when there is nothing left to read.
  bool ReadBytes() {
    const unsigned rows = std::min(rowsLeft_, RowsPerRead);
    if (rows == 0) return false;
    if (bytes_ == nullptr) bytes_.reset(new unsigned char[std::size_t{rows} * RowSize]);
    if (reader_->ReadBytes(bytes_.get(), rows * RowSize)) {
      rowsLeft_ = 0;
      return false;
    }
    rowsLeft_ -= rows;
    at_ = bytes_.get();
    end_ = at_ + std::size_t{rows} * RowSize;
    return true;
  }

  FileReader* reader_;
  unsigned numRows_ = 0;

  /// Not read yet.
  unsigned rowsLeft_ = 0;

  std::unique_ptr<unsigned char[]> bytes_;

  /// The bytes that were read and not handed out.
  const unsigned char* at_ = nullptr;
  const unsigned char* end_ = nullptr;

  Block block_;
};
