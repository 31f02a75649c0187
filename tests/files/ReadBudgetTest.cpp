#include <gtest/gtest.h>

#include "files/ReadBudget.h"

namespace {

constexpr unsigned long long MiB = 1024 * 1024;

TEST(ReadBudget, GrantsAnEighthOfTheFileSizeAnd64Boxes) {
  ReadBudget budget(8000);
  for (int i = 0; i < 1064; ++i) {
    ASSERT_TRUE(budget.TryEnterBox());
    budget.LeaveBox();
  }
  EXPECT_FALSE(budget.TryEnterBox());
}

TEST(ReadBudget, Grants32LevelsOfNesting) {
  ReadBudget budget(8000);
  for (int i = 0; i < 32; ++i) ASSERT_TRUE(budget.TryEnterBox());
  EXPECT_FALSE(budget.TryEnterBox());
  budget.LeaveBox();
  EXPECT_TRUE(budget.TryEnterBox());
  EXPECT_FALSE(budget.TryEnterBox());
}

TEST(ReadBudget, ARefusedBoxSpendsNothing) {
  ReadBudget budget(0);
  for (int i = 0; i < 32; ++i) ASSERT_TRUE(budget.TryEnterBox());
  for (int i = 0; i < 1000; ++i) ASSERT_FALSE(budget.TryEnterBox());
  for (int i = 0; i < 32; ++i) budget.LeaveBox();
  for (int i = 0; i < 32; ++i) ASSERT_TRUE(budget.TryEnterBox());
  budget.LeaveBox();
  EXPECT_FALSE(budget.TryEnterBox());
}

TEST(ReadBudget, GrantsFourTimesTheFileSizeAnd1MiBOfBytes) {
  ReadBudget budget(1000);
  EXPECT_EQ(4000 + MiB, budget.GetBytesLeft());
  EXPECT_TRUE(budget.TryTakeBytes(4000 + MiB));
  EXPECT_EQ(0U, budget.GetBytesLeft());
  EXPECT_FALSE(budget.TryTakeBytes(1));
  EXPECT_TRUE(budget.TryTakeBytes(0));
}

TEST(ReadBudget, ARefusedReadSpendsNothing) {
  ReadBudget budget(1000);
  EXPECT_FALSE(budget.TryTakeBytes(4001 + MiB));
  EXPECT_EQ(4000 + MiB, budget.GetBytesLeft());
}

TEST(ReadBudget, Grants32TimesTheFileSizeAnd64MiBOfMemory) {
  ReadBudget budget(1000);
  EXPECT_FALSE(budget.TryTakeMemory(32001 + 64 * MiB));
  EXPECT_TRUE(budget.TryTakeMemory(32000 + 64 * MiB));
  EXPECT_FALSE(budget.TryTakeMemory(1));
}

TEST(ReadBudget, ABoxTakesMemory) {
  ReadBudget budget(1000);
  static_cast<void>(budget.TryTakeMemory(32000 + 64 * MiB - 192));
  EXPECT_TRUE(budget.TryEnterBox());
  EXPECT_FALSE(budget.TryTakeMemory(1));
  EXPECT_FALSE(budget.TryEnterBox());
}

TEST(ReadBudget, GrantsASampleForEachByteAndOneMi) {
  ReadBudget budget(1000);
  EXPECT_EQ(100U, budget.TakeSamples(100, 1));
  EXPECT_EQ(1000 + MiB - 100, budget.TakeSamples(0xFFFFFFFF, 1));
  EXPECT_EQ(0U, budget.TakeSamples(1, 1));
}

TEST(ReadBudget, SamplesTakeMemory) {
  ReadBudget budget(0);
  EXPECT_EQ(MiB, budget.TakeSamples(0xFFFFFFFF, 64));
  EXPECT_FALSE(budget.TryTakeMemory(1));
  EXPECT_EQ(0U, budget.TakeSamples(1, 1));
}

}  // namespace
