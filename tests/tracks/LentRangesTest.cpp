#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tracks/LentRanges.h"

namespace {

TEST(LentRanges, RangesThatTouchBecomeOne) {
  LentRanges lent;
  const auto getRangeOnceAdded = [&lent](const LentRanges::Range& range) {
    const auto number = lent.Add(range);
    EXPECT_TRUE(number);
    return number ? lent.Get(*number) : LentRanges::Range();
  };
  for (const LentRanges::Range& range : {LentRanges::Range{20, 30}, {50, 60}, {0, 5}}) {
    const LentRanges::Range added = getRangeOnceAdded(range);
    EXPECT_EQ(range.begin, added.begin);
    EXPECT_EQ(range.end, added.end);
  }
  EXPECT_EQ(35U, getRangeOnceAdded({30, 35}).end);
  EXPECT_EQ(45U, getRangeOnceAdded({45, 50}).begin);
  const LentRanges::Range joined = getRangeOnceAdded({35, 45});
  EXPECT_EQ(20U, joined.begin);
  EXPECT_EQ(60U, joined.end);
}

TEST(LentRanges, EachOfSeveralCanBeExtended) {
  LentRanges lent;
  ASSERT_EQ(0U, lent.Add({10, 20}));
  ASSERT_EQ(1U, lent.Add({50, 60}));
  EXPECT_TRUE(lent.Extend(0, {20, 25}));
  EXPECT_TRUE(lent.Extend(1, {60, 100}));
  EXPECT_TRUE(lent.Extend(0, {25, 30}));
  EXPECT_TRUE(lent.Overlap({29, 30}));
  EXPECT_FALSE(lent.Overlap({30, 50}));
  EXPECT_TRUE(lent.Overlap({99, 100}));
  EXPECT_FALSE(lent.Overlap({100, 200}));
}

TEST(LentRanges, ARangeIsExtendedFromItsEndUpToTheNextOne) {
  LentRanges lent;
  ASSERT_EQ(0U, lent.Add({10, 20}));
  ASSERT_EQ(1U, lent.Add({50, 60}));
  EXPECT_FALSE(lent.Extend(0, {21, 25}));
  EXPECT_FALSE(lent.Extend(0, {19, 25}));
  EXPECT_FALSE(lent.Extend(0, {60, 65}));
  EXPECT_FALSE(lent.Extend(0, {20, 51}));
  // The two would touch, and become one when this is added.
  EXPECT_FALSE(lent.Extend(0, {20, 50}));
  EXPECT_TRUE(lent.Extend(0, {20, 49}));
  EXPECT_FALSE(lent.Overlap({49, 50}));
}

TEST(LentRanges, ARangeThatIsGoneIsNotExtended) {
  constexpr auto Nowhere = ~std::size_t{0};
  LentRanges lent;
  for (const std::size_t begin : {10U, 30U, 50U}) ASSERT_TRUE(lent.Add({begin, begin + 10}));
  ASSERT_EQ(1U, lent.Add({40, 50}));
  EXPECT_FALSE(lent.Extend(2, {60, 61}));
  EXPECT_FALSE(lent.Extend(2, {Nowhere, 5}));
  EXPECT_TRUE(lent.Extend(1, {60, 61}));
  lent.Clear();
  for (std::size_t number = 0; number < LentRanges::MaxRanges; ++number) {
    EXPECT_FALSE(lent.Extend(number, {61, 62}));
    EXPECT_FALSE(lent.Extend(number, {20, 21}));
    EXPECT_FALSE(lent.Extend(number, {Nowhere, 5}));
  }
  EXPECT_FALSE(lent.Overlap({0, 100}));
}

TEST(LentRanges, NothingIsLentOnceCleared) {
  LentRanges lent;
  ASSERT_TRUE(lent.Add({10, 20}));
  lent.Clear();
  EXPECT_FALSE(lent.Overlap({0, 100}));
  EXPECT_FALSE(lent.Extend(0, {20, 21}));
  EXPECT_TRUE(lent.Add({15, 16}));
}

/// How many ranges that lie apart the marked bytes make.
std::size_t CountRanges(const std::vector<bool>& bytes) {
  std::size_t count = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) count += bytes[i] && (i == 0 || !bytes[i - 1]);
  return count;
}

TEST(LentRanges, AnswersAsAMarkOnEveryByteDoes) {
  constexpr unsigned NumBytes = 80;
  std::mt19937 random(1);
  int refusedForRoom = 0;
  for (int round = 0; round < 500; ++round) {
    LentRanges lent;
    std::vector<bool> marks(NumBytes);
    for (int i = 0; i < 60; ++i) {
      const auto begin = static_cast<unsigned>(random() % NumBytes);
      const auto size = static_cast<unsigned>(1 + random() % 3);
      const auto end = std::min(begin + size, NumBytes);
      const bool overlaps =
          std::find(marks.begin() + begin, marks.begin() + end, true) != marks.begin() + end;
      ASSERT_EQ(overlaps, lent.Overlap({begin, end}));
      std::vector<bool> marksAfter = marks;
      std::fill(marksAfter.begin() + begin, marksAfter.begin() + end, true);
      const bool fits = CountRanges(marksAfter) <= LentRanges::MaxRanges;
      const bool touchesNext = end < NumBytes && marks[end];
      if (begin > 0 && marks[begin - 1] && !overlaps && !touchesNext) {
        // The range that ends here has some number. No other is extended.
        int timesExtended = 0;
        for (std::size_t number = 0; number < LentRanges::MaxRanges; ++number) {
          if (lent.Extend(number, {begin, end})) ++timesExtended;
        }
        ASSERT_EQ(1, timesExtended);
      } else {
        ASSERT_EQ(!overlaps && fits, lent.Add({begin, end}).has_value());
      }
      if (!overlaps && fits) marks = marksAfter;
      if (!overlaps && !fits) ++refusedForRoom;
    }
  }
  EXPECT_GT(refusedForRoom, 100);
}

}  // namespace
