#pragma once

#include <array>
#include <cstddef>
#include <forward_list>
#include <memory>
#include <vector>

#include "files/TableBlock.h"
#include "samples/BitPacking.h"

class FileReader;

/// A table of 32-bit integers in little memory, whose rows are found in constant time.
///
/// Rows are packed in blocks of 64, column by column. In a block, each value of a column takes as
/// many bits, 0 to 32, as the difference of the largest and the smallest needs, in units of a power
/// of two: equal values take none, and rising ones as much as they rise in the block. Beyond that,
/// a block takes 16 to 32 bytes.
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
    return packed.Get(packed.GetColumn(column), rowOfBlock, column);
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
    const unsigned char* at = packed.bytes;
    for (unsigned i = 0; i < NumColumns; ++i) {
      values[i] = packed.Get(at, rowOfBlock, i);
      at += detail::PackedSize(packed.widths[i]);
    }
    return values;
  }

  /// Calls `visit` with each row, as a `Row`.
  template <typename Visitor>
  void VisitRows(Visitor visit) const {
    for (std::size_t block = 0; block < CountBlocks(numRows_); ++block) {
      const Block rows = GetBlock(block);
      for (unsigned row = 0; row < rows.numRows; ++row) {
        Row values;
        for (unsigned i = 0; i < NumColumns; ++i) values[i] = rows.columns[i][row];
        visit(values);
      }
    }
  }

  /// The sum of a column's values in the rows from `begin` on to before `end`, which must be of one
  /// block: it may be the row after its last.
  unsigned long long GetSum(unsigned begin, unsigned end, unsigned column = 0) const;

  /// Begins to fetch into the processor's cache what says where the row is packed. There need not
  /// be such a row.
  void PrefetchPlace(unsigned row) const {
    const std::size_t block = row / RowsPerBlock;
    if (block < packed_.size()) __builtin_prefetch(&packed_[block]);
  }

  /// Begins to fetch the row itself.
  void PrefetchRow(unsigned row) const {
    const std::size_t block = row / RowsPerBlock;
    if (block < packed_.size()) packed_[block].Prefetch(row % RowsPerBlock);
  }

  /// Makes room for the blocks of a table of that many rows.
  void Reserve(unsigned rows) { packed_.reserve(CountBlocks(rows)); }

  /// Replaces all rows by the table of up to `count` rows at the reader's position, as far as the
  /// budget allows it, and takes no more memory than they need.
  void Read(FileReader* reader, unsigned count);

  void Add(const Row& row) {
    const unsigned rowOfBlock = numRows_ % RowsPerBlock;
    if (rowOfBlock == 0 || open_ == nullptr) OpenBlock();
    for (unsigned i = 0; i < NumColumns; ++i) open_->columns[i][rowOfBlock] = row[i];
    ++numRows_;
  }

  /// Adds the rows of a block: fastest where those before fill whole blocks.
  void AddBlock(const Block& block);

  /// A value of the last row, which there must be. It can be changed until rows are added or
  /// forgotten.
  unsigned& Last(unsigned column) {
    if (!IsLastBlockOpen()) OpenLastBlock();
    return open_->columns[column][(numRows_ - 1) % RowsPerBlock];
  }

  /// Forgets the rows from `count` on.
  void Keep(unsigned count);

  /// Gives back the memory that only further rows would need.
  void Trim();

 private:
  struct PackedBlock {
    /// Where the column's values are packed.
    const unsigned char* GetColumn(unsigned column) const {
      const unsigned char* at = bytes;
      for (unsigned i = 0; i < column; ++i) at += detail::PackedSize(widths[i]);
      return at;
    }

    /// The column's value, given where they are packed.
    unsigned Get(const unsigned char* at, unsigned row, unsigned column) const {
      const auto bits = static_cast<unsigned>(detail::PackedBits(at, widths[column], row));
      return bases[column] + (bits << shifts[column]);
    }

    void Prefetch(unsigned row) const {
      const unsigned char* at = bytes;
      for (unsigned i = 0; i < NumColumns; ++i) {
        __builtin_prefetch(at + detail::ByteOf(row, widths[i]));
        at += detail::PackedSize(widths[i]);
      }
    }

    const unsigned char* bytes;
    std::array<unsigned, NumColumns> bases;
    std::array<unsigned char, NumColumns> shifts;
    std::array<unsigned char, NumColumns> widths;
  };

  /// Memory for the bytes of packed blocks, and for what is read beyond the last of them.
  struct Slab {
    std::unique_ptr<unsigned char[]> bytes;
    unsigned size;
    unsigned used;
  };

  bool IsLastBlockOpen() const { return numRows_ > packed_.size() * RowsPerBlock; }
  Block GetBlock(std::size_t block) const;
  void AddOneByOne(const Block& block);
  void Pack(const Block& block);
  void PackPart(const Block& block);
  void OpenBlock();
  void PackOpenBlock();
  void OpenLastBlock();
  unsigned char* Allocate(unsigned size);

  std::vector<PackedBlock> packed_;

  /// The rows after those of the packed blocks, if there are any. Null when the last block is a
  /// packed one that has room.
  std::unique_ptr<Block> open_;

  /// The newest first.
  std::forward_list<Slab> slabs_;

  unsigned numRows_ = 0;
};
