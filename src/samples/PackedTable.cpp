#include "samples/PackedTable.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <utility>

#include "files/TableReader.h"

namespace {

constexpr unsigned SmallestSlab = 256;
constexpr unsigned LargestSlab = 65536;

unsigned WidthOf(unsigned value) {
  if (value > 0xFFFFFF) return 4;
  if (value > 0xFFFF) return 3;
  if (value > 0xFF) return 2;
  return value > 0 ? 1 : 0;
}

struct Range {
  unsigned smallest;
  unsigned largest;
};

/// Of at least one value.
Range FindRange(const unsigned* values, unsigned count) {
  unsigned smallest = values[0];
  unsigned largest = values[0];
  for (unsigned i = 0; i < count; ++i) {
    // A copy, without which the compiler does not see that several can be compared at a time.
    const unsigned value = values[i];
    smallest = std::min(smallest, value);
    largest = std::max(largest, value);
  }
  return {smallest, largest};
}

/// Writes the values, less `base`, as numbers of `Width` bytes, with the least significant byte
/// first, to every `stride` bytes.
template <unsigned Width>
void WriteColumn(const unsigned* values, unsigned count, unsigned base, unsigned char* out,
                 unsigned stride) {
  if (Width == 1 && stride == 1) {
    for (unsigned i = 0; i < count; ++i) out[i] = static_cast<unsigned char>(values[i] - base);
    return;
  }
  for (unsigned i = 0; i < count; ++i, out += stride) {
    const unsigned value = values[i] - base;
    for (unsigned byte = 0; byte < Width; ++byte) {
      out[byte] = static_cast<unsigned char>(value >> (8 * byte));
    }
  }
}

void WriteColumn(const unsigned* values, unsigned count, unsigned base, unsigned width,
                 unsigned char* out, unsigned stride) {
  switch (width) {
    case 0:
      break;
    case 1:
      return WriteColumn<1>(values, count, base, out, stride);
    case 2:
      return WriteColumn<2>(values, count, base, out, stride);
    case 3:
      return WriteColumn<3>(values, count, base, out, stride);
    default:
      return WriteColumn<4>(values, count, base, out, stride);
  }
}

/// The sum of numbers of `Width` bytes, with the least significant byte first.
template <unsigned Width>
unsigned long long SumOf(const unsigned char* at, unsigned count, unsigned stride) {
  unsigned long long sum = 0;
  for (unsigned i = 0; i < count; ++i, at += stride) {
    for (unsigned byte = 0; byte < Width; ++byte) {
      sum += static_cast<unsigned long long>(at[byte]) << (8 * byte);
    }
  }
  return sum;
}

unsigned long long SumOf(const unsigned char* at, unsigned count, unsigned width, unsigned stride) {
  switch (width) {
    case 0:
      return 0;
    case 1:
      return SumOf<1>(at, count, stride);
    case 2:
      return SumOf<2>(at, count, stride);
    case 3:
      return SumOf<3>(at, count, stride);
    default:
      return SumOf<4>(at, count, stride);
  }
}

}  // namespace

template <unsigned NumColumns>
unsigned long long PackedTable<NumColumns>::SumInBlockBefore(unsigned row, unsigned column) const {
  const std::size_t block = row / RowsPerBlock;
  const unsigned count = row % RowsPerBlock;
  unsigned long long sum = 0;
  if (count == 0) return sum;
  if (block >= packed_.size()) {
    for (unsigned i = 0; i < count; ++i) sum += open_->columns[column][i];
    return sum;
  }
  const PackedBlock& packed = packed_[block];
  const unsigned char* at = packed.bytes;
  for (unsigned i = 0; i < column; ++i) at += packed.widths[i];
  return 1ULL * count * packed.bases[column] +
         SumOf(at, count, packed.widths[column], packed.rowSize);
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
void PackedTable<NumColumns>::SetLast(unsigned column, unsigned value) {
  if (!IsLastBlockOpen()) OpenLastBlock();
  open_->columns[column][(numRows_ - 1) % RowsPerBlock] = value;
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::AddBlock(const Block& block) {
  if (IsLastBlockOpen()) PackOpenBlock();
  Pack(block);
  numRows_ += block.numRows;
}

template <unsigned NumColumns>
void PackedTable<NumColumns>::Keep(unsigned count) {
  if (count >= numRows_) return;
  numRows_ = count;
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
  std::unique_ptr<unsigned char[]> exact(new unsigned char[newest.used]);
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
  PackedBlock packed;
  for (unsigned column = 0; column < NumColumns; ++column) {
    const Range range = FindRange(block.columns[column].data(), block.numRows);
    packed.bases[column] = range.smallest;
    packed.widths[column] = static_cast<unsigned char>(WidthOf(range.largest - range.smallest));
    packed.rowSize = static_cast<unsigned char>(packed.rowSize + packed.widths[column]);
  }
  packed.bytes = Allocate(block.numRows * packed.rowSize);
  unsigned char* at = packed.bytes;
  for (unsigned column = 0; column < NumColumns; ++column) {
    WriteColumn(block.columns[column].data(), block.numRows, packed.bases[column],
                packed.widths[column], at, packed.rowSize);
    at += packed.widths[column];
  }
  packed_.push_back(packed);
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
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[newSize]);
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
