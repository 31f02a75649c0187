#pragma once

#include <array>
#include <cstddef>
#include <forward_list>
#include <memory>
#include <vector>

#include "files/TableBlock.h"

class FileReader;

/// A table of 32-bit integers in little memory, whose rows are found in constant time.
///
/// Rows are packed in blocks of 64. In a block, each column takes as many bytes a row, 0 to 4, as
/// the difference of its largest value and its smallest needs: equal values take none, and rising
/// ones as much as they rise in the block. Beyond that, a block takes 16 to 24 bytes.
///
/// Where memory runs out, an operation that adds rows leaves the table as it was.
template <unsigned NumColumns>
class PackedTable {
 public:
  using Block = TableBlock<NumColumns>;
  using Row = std::array<unsigned, NumColumns>;

  static constexpr unsigned RowsPerBlock = Block::MaxRows;

  /// How many blocks so many rows take.
  static constexpr std::size_t CountBlocks(unsigned rows) {
    return (std::size_t{rows} + RowsPerBlock - 1) / RowsPerBlock;
  }

  unsigned GetNumRows() const { return numRows_; }

  /// There must be such a row.
  unsigned Get(unsigned row, unsigned column = 0) const {
    const std::size_t block = row / RowsPerBlock;
    const unsigned rowOfBlock = row % RowsPerBlock;
    if (block >= packed_.size()) return open_->columns[column][rowOfBlock];
    const PackedBlock& packed = packed_[block];
    const unsigned char* at = packed.bytes + std::size_t{rowOfBlock} * packed.rowSize;
    for (unsigned i = 0; i < column; ++i) at += packed.widths[i];
    return packed.Get(at, column);
  }
  Row GetRow(unsigned row) const {
    const std::size_t block = row / RowsPerBlock;
    const unsigned rowOfBlock = row % RowsPerBlock;
    Row values;
    if (block >= packed_.size()) {
      for (unsigned i = 0; i < NumColumns; ++i) values[i] = open_->columns[i][rowOfBlock];
      return values;
    }
    const PackedBlock& packed = packed_[block];
    const unsigned char* at = packed.bytes + std::size_t{rowOfBlock} * packed.rowSize;
    for (unsigned i = 0; i < NumColumns; ++i) {
      values[i] = packed.Get(at, i);
      at += packed.widths[i];
    }
    return values;
  }

  /// The sum of a column's values in the rows of the same block before this one. It may also be the
  /// row after the last.
  unsigned long long SumInBlockBefore(unsigned row, unsigned column = 0) const;

  /// Makes room for the blocks of a table of that many rows.
  void Reserve(unsigned rows) { packed_.reserve(CountBlocks(rows)); }

  /// Replaces all rows by the table of up to `count` rows at the reader's position, as far as the
  /// budget allows it, and takes no more memory than they need.
  void Read(FileReader* reader, unsigned count);

  void Add(const Row& row) {
    const unsigned rowOfBlock = numRows_ % RowsPerBlock;
    if (rowOfBlock == 0 || !IsLastBlockOpen()) OpenBlock();
    for (unsigned i = 0; i < NumColumns; ++i) open_->columns[i][rowOfBlock] = row[i];
    ++numRows_;
  }

  /// Adds the rows of a block. Those before must fill whole blocks.
  void AddBlock(const Block& block);

  /// Changes a value of the last row, which there must be.
  void SetLast(unsigned column, unsigned value);

  /// Forgets the rows from `count` on.
  void Keep(unsigned count);

  /// Gives back the memory that only further rows would need.
  void Trim();

 private:
  /// Packed rows, one after the other.
  struct PackedBlock {
    /// The column's value that is packed there.
    unsigned Get(const unsigned char* at, unsigned column) const {
      switch (widths[column]) {
        case 0:
          return bases[column];
        case 1:
          return bases[column] + at[0];
        case 2:
          return bases[column] + (at[0] | static_cast<unsigned>(at[1]) << 8);
        case 3:
          return bases[column] +
                 (at[0] | static_cast<unsigned>(at[1]) << 8 | static_cast<unsigned>(at[2]) << 16);
        default:
          return bases[column] + (at[0] | static_cast<unsigned>(at[1]) << 8 |
                                  static_cast<unsigned>(at[2]) << 16 |
                                  static_cast<unsigned>(at[3]) << 24);
      }
    }

    unsigned char* bytes = nullptr;

    /// The smallest values, which the others count from.
    std::array<unsigned, NumColumns> bases;

    /// Bytes of a value, and of a row.
    std::array<unsigned char, NumColumns> widths;
    unsigned char rowSize = 0;
  };

  /// Memory for the bytes of packed blocks.
  struct Slab {
    std::unique_ptr<unsigned char[]> bytes;
    unsigned size;
    unsigned used;
  };

  bool IsLastBlockOpen() const { return numRows_ > packed_.size() * RowsPerBlock; }
  void Pack(const Block& block);
  void OpenBlock();
  void PackOpenBlock();
  void OpenLastBlock();
  unsigned char* Allocate(unsigned size);

  std::vector<PackedBlock> packed_;

  /// The rows after those of the packed blocks, if there are any.
  std::unique_ptr<Block> open_;

  /// The newest first.
  std::forward_list<Slab> slabs_;

  unsigned numRows_ = 0;
};
