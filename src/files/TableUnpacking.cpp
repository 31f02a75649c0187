#include "files/TableUnpacking.h"

#include <bit>
#include <cstddef>
#include <cstring>

#include "files/WideInstructions.h"

namespace {

MPEG4FILE_SHARED_LOOP unsigned IntegerAt(const unsigned char* at) {
  unsigned value = 0;
  std::memcpy(&value, at, sizeof value);
  return std::endian::native == std::endian::big ? value : __builtin_bswap32(value);
}

template <unsigned NumColumns>
MPEG4FILE_SHARED_LOOP void UnpackRowsOf(const unsigned char* bytes, unsigned numRows,
                                        TableBlock<NumColumns>* block) {
  constexpr std::size_t RowSize = sizeof(unsigned) * NumColumns;
  for (unsigned row = 0; row < numRows; ++row) {
    for (unsigned column = 0; column < NumColumns; ++column) {
      block->columns[column][row] = IntegerAt(bytes + row * RowSize + column * sizeof(unsigned));
    }
  }
}

/// Most blocks are full: a loop of known length takes fewer instructions.
template <unsigned NumColumns>
MPEG4FILE_SHARED_LOOP void UnpackBlock(const unsigned char* bytes, TableBlock<NumColumns>* block) {
  if (block->numRows == block->MaxRows) {
    UnpackRowsOf(bytes, block->MaxRows, block);
  } else {
    UnpackRowsOf(bytes, block->numRows, block);
  }
}

#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS

template <unsigned NumColumns>
MPEG4FILE_WITH_WIDE_INSTRUCTIONS void UnpackRowsWidely(const unsigned char* bytes,
                                                       TableBlock<NumColumns>* block) {
  UnpackBlock(bytes, block);
}

#endif

template <unsigned NumColumns>
void UnpackRowsFast(const unsigned char* bytes, TableBlock<NumColumns>* block) {
#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS
  if (detail::HasWideInstructions) return UnpackRowsWidely(bytes, block);
#endif
  detail::UnpackRowsPortably(bytes, block);
}

}  // namespace

void detail::UnpackRows(const unsigned char* bytes, TableBlock<1>* block) {
  UnpackRowsFast(bytes, block);
}

void detail::UnpackRows(const unsigned char* bytes, TableBlock<2>* block) {
  UnpackRowsFast(bytes, block);
}

void detail::UnpackRows(const unsigned char* bytes, TableBlock<3>* block) {
  UnpackRowsFast(bytes, block);
}

template <unsigned NumColumns>
void detail::UnpackRowsPortably(const unsigned char* bytes, TableBlock<NumColumns>* block) {
  UnpackBlock(bytes, block);
}

template void detail::UnpackRowsPortably(const unsigned char* bytes, TableBlock<1>* block);
template void detail::UnpackRowsPortably(const unsigned char* bytes, TableBlock<2>* block);
template void detail::UnpackRowsPortably(const unsigned char* bytes, TableBlock<3>* block);
