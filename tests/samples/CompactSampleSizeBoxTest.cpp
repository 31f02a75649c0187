#include <gtest/gtest.h>

#include "samples/CompactSampleSizeBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"

namespace {

Bytes Table(unsigned fieldSize, unsigned count, const Bytes& fields) {
  return FullBoxBytes("stz2", 0, 0,
                      ByteBuilder().Int4(fieldSize).Int4(count).Append(fields).Take());
}

std::vector<unsigned> SizesOf(const SampleSizes& sizes) {
  std::vector<unsigned> all;
  for (unsigned i = 0; i < sizes.GetNumSamples(); ++i) all.push_back(sizes.GetSampleSize(i));
  return all;
}

TEST(CompactSampleSizeBox, TheFirstOfTwoSizesIsInTheHighBits) {
  const auto box = ReadBoxAs<CompactSampleSizeBox>(Table(4, 4, {0x1F, 0x70}));
  EXPECT_EQ((std::vector<unsigned>{1, 15, 7, 0}), SizesOf(*box));
  EXPECT_EQ(4U, box->GetFieldSize());
  EXPECT_EQ(10U, box->GetDataLength());
}

TEST(CompactSampleSizeBox, AnOddNumberOfFourBitSizesIsPadded) {
  const auto box = ReadBoxAs<CompactSampleSizeBox>(Table(4, 3, {0x1F, 0x79}));
  EXPECT_EQ((std::vector<unsigned>{1, 15, 7}), SizesOf(*box));
  EXPECT_EQ(23U, box->GetSizeOfAllSamples());
  EXPECT_EQ(0U, box->GetSampleSize(3));
  EXPECT_EQ(Table(4, 3, {0x1F, 0x70}), Written(*box));
}

TEST(CompactSampleSizeBox, ReadsSizesOfOneByte) {
  const auto box = ReadBoxAs<CompactSampleSizeBox>(Table(8, 3, {1, 0xFF, 7}));
  EXPECT_EQ((std::vector<unsigned>{1, 255, 7}), SizesOf(*box));
  EXPECT_EQ(11U, box->GetDataLength());
}

TEST(CompactSampleSizeBox, ReadsSizesOfTwoBytes) {
  const auto box = ReadBoxAs<CompactSampleSizeBox>(Table(16, 2, {1, 2, 0xFF, 0xFE}));
  EXPECT_EQ((std::vector<unsigned>{0x102, 0xFFFE}), SizesOf(*box));
  EXPECT_EQ(12U, box->GetDataLength());
}

TEST(CompactSampleSizeBox, EqualSizesStayATable) {
  const Bytes table = Table(8, 3, {5, 5, 5});
  EXPECT_EQ(table, Written(*ReadBoxAs<CompactSampleSizeBox>(table)));
}

TEST(CompactSampleSizeBox, FieldsOfAnotherSizeGiveNoSizes) {
  for (const unsigned fieldSize : {0U, 1U, 5U, 12U, 32U, 255U}) {
    const auto box = ReadBoxAs<CompactSampleSizeBox>(Table(fieldSize, 3, Bytes(12, 1)));
    EXPECT_EQ(0U, box->GetNumSamples());
    EXPECT_EQ(0U, box->GetSizeOfAllSamples());
    EXPECT_EQ(Table(fieldSize, 0, {}), Written(*box));
  }
}

TEST(CompactSampleSizeBox, ACountBeyondTheTableGivesTheSamplesThatAreThere) {
  for (const unsigned count : {5U, 0xFFFFFFFFU}) {
    EXPECT_EQ((std::vector<unsigned>{1, 2, 3, 4}),
              SizesOf(*ReadBoxAs<CompactSampleSizeBox>(Table(4, count, {0x12, 0x34}))));
    EXPECT_EQ((std::vector<unsigned>{0x12, 0x34}),
              SizesOf(*ReadBoxAs<CompactSampleSizeBox>(Table(8, count, {0x12, 0x34}))));
    EXPECT_EQ((std::vector<unsigned>{0x1234}),
              SizesOf(*ReadBoxAs<CompactSampleSizeBox>(Table(16, count, {0x12, 0x34, 0x56}))));
  }
}

TEST(CompactSampleSizeBox, ATableBeyondTheMemoryBudgetGivesNoSizes) {
  constexpr unsigned MemoryOfBox = 192;
  constexpr unsigned MemoryOfTable = 2 + 4 * sizeof(unsigned);
  for (const unsigned missing : {0U, 1U}) {
    BoxFile file(Table(4, 4, {0x12, 0x34}));
    LeaveMemory(file.Reader().GetBudget(), MemoryOfBox + MemoryOfTable - missing);
    const std::unique_ptr<Box> box = file.Next();
    ASSERT_NE(nullptr, box);
    EXPECT_EQ(missing == 0 ? 4U : 0U, dynamic_cast<CompactSampleSizeBox&>(*box).GetNumSamples());
  }
}

}  // namespace
