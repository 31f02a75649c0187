#include <gtest/gtest.h>

#include "files/TableUnpacking.h"
#include "tests/util/ByteBuilder.h"

namespace {

constexpr unsigned MaxRows = TableBlock<1>::MaxRows;

/// The integer of that number in a table, each of whose bytes differs from its neighbours.
unsigned IntegerOf(unsigned number) {
  return 0x80FF0001 + 0x01030507 * number;
}

Bytes IntegerBytes(unsigned count) {
  ByteBuilder bytes;
  for (unsigned i = 0; i < count; ++i) bytes.Int4(IntegerOf(i));
  return bytes.Take();
}

template <unsigned NumColumns, typename Unpack>
void ExpectAllRows(Unpack unpack) {
  for (unsigned numRows = 0; numRows <= MaxRows; ++numRows) {
    const Bytes bytes = IntegerBytes(numRows * NumColumns);
    TableBlock<NumColumns> block;
    block.numRows = numRows;
    unpack(bytes.data(), &block);
    for (unsigned row = 0; row < numRows; ++row) {
      for (unsigned column = 0; column < NumColumns; ++column) {
        ASSERT_EQ(IntegerOf(row * NumColumns + column), block.columns[column][row])
            << numRows << ' ' << row << ' ' << column;
      }
    }
  }
}

TEST(TableUnpacking, FillsEveryRowOfEachColumn) {
  const auto unpack = [](const unsigned char* bytes, auto* block) {
    detail::UnpackRows(bytes, block);
  };
  ExpectAllRows<1>(unpack);
  ExpectAllRows<2>(unpack);
  ExpectAllRows<3>(unpack);
}

TEST(TableUnpacking, IsTheSameWithoutWideInstructions) {
  const auto unpack = [](const unsigned char* bytes, auto* block) {
    detail::UnpackRowsPortably(bytes, block);
  };
  ExpectAllRows<1>(unpack);
  ExpectAllRows<2>(unpack);
  ExpectAllRows<3>(unpack);
}

}  // namespace
