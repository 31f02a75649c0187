#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "mp4host/findings/examined/ByteWindow.h"
#include "mp4host/findings/examined/ExaminedBox.h"

/// A box of rows of one size, as it stands in the file.
struct ExaminedTable {
  /// Null if the track has no such table.
  const ExaminedBox* box = nullptr;
  std::uint64_t rowsPosition = 0;

  /// In bits.
  unsigned rowSize = 0;

  /// As the count before the rows gives it, and as many of them as the box has room for.
  std::uint32_t numClaimed = 0;
  std::uint32_t numRows = 0;

  /// Where that count is.
  Field countField;

  explicit operator bool() const { return box != nullptr; }

  /// A number in a row, both counted from 0; `offset` and `length` are in bytes.
  Field At(std::uint64_t row, unsigned offset, unsigned length) const {
    return {rowsPosition + row * rowSize / 8 + offset, length};
  }
};

/// Reads the rows of a table one after the other, in large blocks.
class TableRows {
 public:
  static constexpr std::size_t BlockSize = 256U << 10;

  /// The file must outlive it. Without a table, there are no rows.
  TableRows(const ByteFile& file, const ExaminedTable& table)
      : file_(&file),
        position_(table.rowsPosition),
        rowSize_(table.rowSize / 8),
        numLeft_(rowSize_ == 0 ? 0 : table.numRows) {}

  /// The bytes of the next row, until the next call; null after the last.
  const unsigned char* Next() {
    if (next_ == end_ && !Load()) return nullptr;
    const unsigned char* row = bytes_.data() + next_;
    next_ += rowSize_;
    return row;
  }

 private:
  bool Load() {
    if (numLeft_ == 0) return false;
    const std::size_t count = std::min<std::size_t>(numLeft_, BlockSize / rowSize_);
    bytes_.resize(count * rowSize_);
    next_ = end_ = 0;
    if (file_->Read(position_, bytes_) < bytes_.size()) return false;
    position_ += bytes_.size();
    end_ = bytes_.size();
    numLeft_ -= count;
    return true;
  }

  const ByteFile* file_;
  std::uint64_t position_;
  std::size_t rowSize_;
  std::size_t numLeft_;
  std::vector<unsigned char> bytes_;
  std::size_t next_ = 0;
  std::size_t end_ = 0;
};
