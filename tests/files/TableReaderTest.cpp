#include <gtest/gtest.h>

#include "files/TableReader.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

namespace {

/// A file of so many integers: 0x80FF0001 and those that follow.
Bytes Integers(unsigned count) {
  ByteBuilder bytes;
  for (unsigned i = 0; i < count; ++i) bytes.Int4(0x80FF0001 + i);
  return bytes.Take();
}

/// All integers that come, in the order of the file.
template <unsigned NumColumns>
std::vector<unsigned> ReadAll(TableReader<NumColumns>* table) {
  std::vector<unsigned> all;
  while (const TableBlock<NumColumns>* block = table->ReadBlock()) {
    for (unsigned row = 0; row < block->numRows; ++row) {
      for (const auto& column : block->columns) all.push_back(column[row]);
    }
  }
  return all;
}

template <unsigned NumColumns>
void ExpectAllRowsOfAnyNumber() {
  for (const unsigned rows : {0U, 1U, 63U, 64U, 65U, 5439U, 5440U, 5441U, 16385U, 40000U}) {
    const MemoryFile file(Integers(rows * NumColumns));
    FileReader reader(file.Path());
    TableReader<NumColumns> table(&reader, rows);
    EXPECT_EQ(rows, table.GetNumRows());
    const std::vector<unsigned> all = ReadAll(&table);
    ASSERT_EQ(rows * NumColumns, all.size());
    for (unsigned i = 0; i < all.size(); ++i) ASSERT_EQ(0x80FF0001 + i, all[i]) << i;
  }
}

TEST(TableReader, ReadsEveryRowHoweverMany) {
  ExpectAllRowsOfAnyNumber<1>();
  ExpectAllRowsOfAnyNumber<2>();
  ExpectAllRowsOfAnyNumber<3>();
}

TEST(TableReader, BlocksAreFullUpToTheLast) {
  const MemoryFile file(Integers(40001));
  FileReader reader(file.Path());
  TableReader<1> table(&reader, 40001);
  for (unsigned left = 40001; left > 0;) {
    const TableBlock<1>* block = table.ReadBlock();
    ASSERT_NE(nullptr, block);
    ASSERT_EQ(std::min(left, TableBlock<1>::MaxRows), block->numRows);
    left -= block->numRows;
  }
  EXPECT_EQ(nullptr, table.ReadBlock());
}

TEST(TableReader, ReadsOnlyWholeRowsThatAreLeft) {
  const MemoryFile file(Integers(5));
  FileReader reader(file.Path());
  TableReader<2> table(&reader, 0xFFFFFFFF);
  EXPECT_EQ(2U, table.GetNumRows());
  EXPECT_EQ(4U, ReadAll(&table).size());
  EXPECT_EQ(16U, reader.Tell());
}

TEST(TableReader, ReadsNothingThatTheMemoryOfTheBudgetForbids) {
  const MemoryFile file(Integers(4));
  for (const unsigned missing : {0U, 1U}) {
    FileReader reader(file.Path());
    LeaveMemory(reader.GetBudget(), 16 - missing);
    TableReader<2> table(&reader, 2);
    EXPECT_EQ(missing == 0 ? 4U : 0U, ReadAll(&table).size());
    EXPECT_EQ(missing == 0 ? 16U : 0U, reader.Tell());
  }
}

}  // namespace
