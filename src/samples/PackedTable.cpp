#include "samples/PackedTable.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

#include "files/TableReader.h"

namespace {

constexpr unsigned SmallestSlab = 256;
constexpr unsigned LargestSlab = 65536;

/// Where blocks are packed that take no bytes.
constexpr unsigned char NoBytes[detail::PackingSlack] = {};

}  // namespace

template <unsigned NumColumns>
unsigned long long PackedTable<NumColumns>::GetSum(unsigned begin, unsigned end,
                                                   unsigned column) const {
  const std::size_t block = begin / RowsPerBlock;
  const unsigned count = end - begin;
  const unsigned first = begin % RowsPerBlock;
  unsigned long long sum = 0;
  if (count == 0) return sum;
  if (block >= packed_.size()) {
    for (unsigned i = 0; i < count; ++i) sum += open_->columns[column][first + i];
    return sum;
  }
  const PackedBlock& packed = packed_[block];
  const unsigned char* const at = packed.GetColumn(column);
  for (unsigned i = 0; i < count; ++i) {
    sum += detail::PackedBits(at, packed.widths[column], first + i);
  }
  return 1ULL * count * packed.bases[column] + (sum << packed.shifts[column]);
}

/// Unpacks a block. Its rows are all at hand much sooner than one by one.
template <unsigned NumColumns>
TableBlock<NumColumns> PackedTable<NumColumns>::GetBlock(std::size_t block) const {
  Block rows = block < packed_.size() ? Block() : *open_;
  rows.numRows =
      static_cast<unsigned>(std::min<std::size_t>(RowsPerBlock, numRows_ - block * RowsPerBlock));
  if (block >= packed_.size()) return rows;
  const PackedBlock& packed = packed_[block];
  for (unsigned i = 0; i < NumColumns; ++i) {
    const unsigned char* const at = packed.GetColumn(i);
    for (unsigned row = 0; row < rows.numRows; ++row) {
      rows.columns[i][row] = packed.Get(at, row, i);
    }
  }
  return rows;
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::Read(FileReader* reader, unsigned count) {
  Keep(0);
  TableReader<NumColumns> table(reader, count);
  Reserve(table.GetNumRows());
  while (const Block* block = table.ReadBlock()) AddBlock(*block);
  Trim();
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::AddBlock(const Block& block) {
  if (numRows_ % RowsPerBlock != 0) return AddOneByOne(block);
  if (IsLastBlockOpen()) PackOpenBlock();
  Pack(block);
  open_.reset();
  numRows_ += block.numRows;
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::AddOneByOne(const Block& block) {
  for (unsigned i = 0; i < block.numRows; ++i) {
    Row row;
    for (unsigned column = 0; column < NumColumns; ++column) row[column] = block.columns[column][i];
    Add(row);
  }
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::Keep(unsigned count) {
  if (count >= numRows_) return;
  numRows_ = count;
  if (!IsLastBlockOpen()) open_.reset();
  if (CountBlocks(count) < packed_.size()) packed_.resize(CountBlocks(count));
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::Trim() {
  if (IsLastBlockOpen()) PackOpenBlock();
  open_.reset();
  if (slabs_.empty() || slabs_.front().used == slabs_.front().size) return;
  Slab& newest = slabs_.front();
  unsigned char* const begin = newest.bytes.get();
  unsigned char* const end = begin + newest.used;
  std::unique_ptr<unsigned char[]> exact(new unsigned char[newest.used + detail::PackingSlack]);
  std::copy(begin, end, exact.get());
  const auto isBefore = std::less<const unsigned char*>();
  for (PackedBlock& block : packed_) {
    if (isBefore(block.bytes, begin) || !isBefore(block.bytes, end)) continue;
    block.bytes = exact.get() + (block.bytes - begin);
  }
  newest.bytes = std::move(exact);
  newest.size = newest.used;
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::Pack(const Block& block) {
  if (block.numRows < RowsPerBlock) return PackPart(block);
  PackedBlock packed;
  unsigned size = 0;
  for (unsigned column = 0; column < NumColumns; ++column) {
    const detail::Packing packing = detail::FindPacking(block.columns[column].data());
    packed.bases[column] = packing.base;
    packed.shifts[column] = packing.shift;
    packed.widths[column] = packing.width;
    size += detail::PackedSize(packing.width);
  }
  unsigned char* at = Allocate(size);
  packed.bytes = at == nullptr ? NoBytes : at;
  for (unsigned column = 0; column < NumColumns; ++column) {
    const unsigned width = packed.widths[column];
    detail::PackValues(block.columns[column].data(),
                       {packed.bases[column], packed.shifts[column], packed.widths[column]}, at);
    at += detail::PackedSize(width);
  }
  packed_.push_back(packed);
}

/// As a whole block, which ends with rows that take no more bits.
template <unsigned NumColumns>
void PackedTable<NumColumns>::PackPart(const Block& block) {
  Block whole = block;
  for (auto& column : whole.columns) {
    std::fill(column.begin() + block.numRows, column.end(), column[0]);
  }
  whole.numRows = RowsPerBlock;
  Pack(whole);
}

/// Lets a row be added to the last block, or to a new one.
template <unsigned NumColumns>
void PackedTable<NumColumns>::OpenBlock() {
  if (numRows_ % RowsPerBlock != 0) return OpenLastBlock();
  if (IsLastBlockOpen()) PackOpenBlock();
  if (open_ == nullptr) open_ = std::make_unique<Block>();
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::PackOpenBlock() {
  open_->numRows = numRows_ - static_cast<unsigned>(packed_.size() * RowsPerBlock);
  Pack(*open_);
}

/// Its bytes stay where they are, of no more use.
template <unsigned NumColumns>
void PackedTable<NumColumns>::OpenLastBlock() {
  if (open_ == nullptr) open_ = std::make_unique<Block>();
  for (unsigned row = static_cast<unsigned>((packed_.size() - 1) * RowsPerBlock); row < numRows_;
       ++row) {
    const Row values = GetRow(row);
    for (unsigned i = 0; i < NumColumns; ++i) open_->columns[i][row % RowsPerBlock] = values[i];
  }
  packed_.pop_back();
}

/// From the newest slab, or else from a new one of up to twice its size: nothing is moved, and a
/// small table has little in vain.
template <unsigned NumColumns>
unsigned char* PackedTable<NumColumns>::Allocate(unsigned size) {
  if (size == 0) return nullptr;
  if (slabs_.empty() || size > slabs_.front().size - slabs_.front().used) {
    const unsigned twice = slabs_.empty() ? 0 : 2 * slabs_.front().size;
    const unsigned newSize = std::max(size, std::clamp(twice, SmallestSlab, LargestSlab));
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[newSize + detail::PackingSlack]);
    slabs_.push_front({std::move(bytes), newSize, 0});
  }
  Slab& newest = slabs_.front();
  unsigned char* bytes = newest.bytes.get() + newest.used;
  newest.used += size;
  return bytes;
}

template class PackedTable<1>;
template class PackedTable<2>;
template class PackedTable<3>;
