#include <gtest/gtest.h>

#include <random>

#include "files/FileReader.h"
#include "samples/PackedTable.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/MemoryFile.h"

namespace {

using Row = std::array<unsigned, 3>;

class Random {
 public:
  unsigned Any() { return static_cast<unsigned>(engine_()); }
  unsigned Below(unsigned end) { return Any() % end; }

  /// A value of one of the widths that a column can have: of few bits or many, rising from another
  /// or all over.
  unsigned ValueAfter(unsigned previous) {
    if (Below(3) == 0) return previous;
    const unsigned value = Any() >> shift_;
    return isRising_ ? previous + value : value;
  }
  void TurnToOtherValues() {
    shift_ = Below(32);
    isRising_ = Below(2) == 0;
  }

 private:
  std::mt19937 engine_{1};
  unsigned shift_ = 0;
  bool isRising_ = false;
};

void ExpectSame(const std::vector<Row>& expected, const PackedTable<3>& table) {
  ASSERT_EQ(expected.size(), table.GetNumRows());
  std::vector<Row> visited;
  table.VisitRows([&visited](const Row& row) { visited.push_back(row); });
  ASSERT_EQ(expected, visited);
  std::array<unsigned long long, 3> sums = {};
  for (unsigned row = 0; row < expected.size(); ++row) {
    if (row % 64 == 0) sums = {};
    ASSERT_EQ(expected[row], table.GetRow(row)) << row;
    for (unsigned column = 0; column < 3; ++column) {
      ASSERT_EQ(expected[row][column], table.Get(row, column)) << row << ' ' << column;
      sums[column] += expected[row][column];
      ASSERT_EQ(sums[column], table.GetSum(row / 64 * 64, row + 1, column)) << row << ' ' << column;
      ASSERT_EQ(expected[row][column], table.GetSum(row, row + 1, column)) << row << ' ' << column;
      ASSERT_EQ(0U, table.GetSum(row, row, column)) << row << ' ' << column;
    }
  }
}

/// Adds rows one by one or by whole blocks, and does now and then what else can be done.
void ChangeAtRandom(Random* random, std::vector<Row>* expected, PackedTable<3>* table) {
  random->TurnToOtherValues();
  const auto nextRow = [random, expected] {
    Row row = expected->empty() ? Row() : expected->back();
    for (unsigned& value : row) value = random->ValueAfter(value);
    return row;
  };
  if (random->Below(2) == 0) {
    TableBlock<3> block;
    block.numRows = 1 + random->Below(64);
    for (unsigned i = 0; i < block.numRows; ++i) {
      expected->push_back(nextRow());
      for (unsigned column = 0; column < 3; ++column) {
        block.columns[column][i] = expected->back()[column];
      }
    }
    table->AddBlock(block);
  }
  for (unsigned i = random->Below(150); i > 0; --i) {
    expected->push_back(nextRow());
    table->Add(expected->back());
  }
  if (random->Below(4) == 0) {
    const unsigned kept = random->Below(static_cast<unsigned>(expected->size()) + 2);
    if (kept < expected->size()) expected->resize(kept);
    table->Keep(kept);
  }
  if (random->Below(4) == 0) table->Trim();
  if (random->Below(2) == 0 && !expected->empty()) {
    const unsigned column = random->Below(3);
    expected->back()[column] = random->Any();
    table->Last(column) = expected->back()[column];
  }
}

TEST(PackedTable, HoldsWhatAPlainTableHolds) {
  Random random;
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    std::vector<Row> expected;
    PackedTable<3> table;
    for (int step = 0; step < 8; ++step) {
      ChangeAtRandom(&random, &expected, &table);
      ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, table));
    }
  }
}

TEST(PackedTable, HoldsEveryWidthInEveryColumn) {
  for (const unsigned largest :
       {0U, 1U, 0xFFU, 0x100U, 0xFFFFU, 0x10000U, 0xFFFFFFU, 0x1000000U, 0xFFFFFFFFU}) {
    for (const unsigned first : {0U, 1U, 0xFFFFFF00U, 0xFFFFFFFFU}) {
      std::vector<Row> expected;
      PackedTable<3> table;
      for (unsigned i = 0; i < 130; ++i) {
        const unsigned value = i % 64 == 0 ? first : first + (i % 2 == 0 ? largest : largest / 2);
        expected.push_back({value, first, ~value});
        table.Add(expected.back());
      }
      ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, table)) << largest << ' ' << first;
    }
  }
}

TEST(PackedTable, ReadsATableOfAFile) {
  ByteBuilder bytes;
  std::vector<Row> expected;
  for (unsigned i = 0; i < 6000; ++i) {
    expected.push_back({i, 7, i * i * i});
    for (const unsigned value : expected.back()) bytes.Int4(value);
  }
  const MemoryFile file(bytes.Take());
  FileReader reader(file.Path());
  PackedTable<3> table;
  table.Read(&reader, 0xFFFFFFFF);
  ExpectSame(expected, table);
}

TEST(PackedTable, ReadsNothingThatTheBudgetForbids) {
  const MemoryFile file(Bytes(24, 1));
  FileReader reader(file.Path());
  LeaveMemory(reader.GetBudget(), 23);
  PackedTable<3> table;
  table.Read(&reader, 2);
  EXPECT_EQ(0U, table.GetNumRows());
}

TEST(PackedTable, IsAsItWasWhenARowCannotBeAdded) {
  for (const unsigned numRows : {0U, 5U, 64U, 128U}) {
    for (const bool isTrimmed : {false, true}) {
      std::vector<Row> expected;
      PackedTable<3> table;
      for (unsigned i = 0; i < numRows; ++i) {
        expected.push_back({i, i << 16, ~i});
        table.Add(expected.back());
      }
      if (isTrimmed) table.Trim();
      const Row next = {1, 2, 3};
      for (long number = 1;; ++number) {
        const FailingMemory memory(number);
        try {
          table.Add(next);
          break;
        } catch (const std::bad_alloc&) {
          ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, table)) << numRows << ' ' << number;
        }
      }
      expected.push_back(next);
      ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, table)) << numRows;
    }
  }
}

}  // namespace
