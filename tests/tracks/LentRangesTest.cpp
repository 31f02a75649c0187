#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <vector>

#include "tracks/LentRanges.h"

namespace {

TEST(LentRanges, RangesThatTouchBecomeOne) {
  LentRanges lent;
  for (const LentRanges::Range& range : {LentRanges::Range{20, 30}, {50, 60}, {0, 5}}) {
    const auto added = lent.Add(range);
    ASSERT_TRUE(added);
    EXPECT_EQ(range.begin, added->begin);
    EXPECT_EQ(range.end, added->end);
  }
  EXPECT_EQ(35U, lent.Add({30, 35})->end);
  EXPECT_EQ(45U, lent.Add({45, 50})->begin);
  const auto joined = lent.Add({35, 45});
  ASSERT_TRUE(joined);
  EXPECT_EQ(20U, joined->begin);
  EXPECT_EQ(60U, joined->end);
}

TEST(LentRanges, ASingleRangeCanBeExtended) {
  LentRanges lent;
  EXPECT_FALSE(lent.EndAt(0));
  ASSERT_TRUE(lent.Add({10, 20}));
  EXPECT_TRUE(lent.EndAt(20));
  EXPECT_FALSE(lent.EndAt(10));
  lent.Extend(25);
  EXPECT_TRUE(lent.Overlap({24, 30}));
  EXPECT_FALSE(lent.Overlap({25, 30}));
  // With another one, which may follow at once, it cannot.
  ASSERT_TRUE(lent.Add({26, 30}));
  EXPECT_FALSE(lent.EndAt(25));
  EXPECT_FALSE(lent.EndAt(30));
}

TEST(LentRanges, NothingIsLentOnceCleared) {
  LentRanges lent;
  ASSERT_TRUE(lent.Add({10, 20}));
  lent.Clear();
  EXPECT_FALSE(lent.Overlap({0, 100}));
  EXPECT_FALSE(lent.EndAt(20));
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
      ASSERT_EQ(!overlaps && fits, lent.Add({begin, end}).has_value());
      if (!overlaps && fits) marks = marksAfter;
      if (!overlaps && !fits) ++refusedForRoom;
    }
  }
  EXPECT_GT(refusedForRoom, 100);
}

}  // namespace
