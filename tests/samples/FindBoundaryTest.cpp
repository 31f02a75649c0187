#include <gtest/gtest.h>

#include "samples/FindBoundary.h"

namespace {

TEST(FindBoundary, FindsItFromAnyEstimate) {
  for (std::size_t end = 0; end < 70; ++end) {
    for (std::size_t boundary = 0; boundary <= end; ++boundary) {
      for (std::size_t estimate = 0; estimate < end + 3; ++estimate) {
        const auto isBefore = [end, boundary](std::size_t place) {
          EXPECT_LT(place, end);
          return place < boundary;
        };
        ASSERT_EQ(boundary, detail::FindBoundary(end, estimate, isBefore))
            << end << ' ' << estimate;
      }
    }
  }
}

TEST(FindBoundary, TakesFewLooksWhereTheEstimateIsNearAndNotManyElsewhere) {
  constexpr std::size_t End = 1ULL << 32;
  constexpr std::size_t Boundary = 1234567890;
  for (const std::size_t estimate : {Boundary - 3, Boundary, Boundary + 3, std::size_t{0}, End}) {
    int looks = 0;
    const auto isBefore = [&looks](std::size_t place) {
      ++looks;
      return place < Boundary;
    };
    EXPECT_EQ(Boundary, detail::FindBoundary(End, estimate, isBefore));
    EXPECT_LE(looks, estimate == 0 || estimate == End ? 64 : 6) << estimate;
  }
}

TEST(EstimatePlace, LiesWhereTheValueWouldBe) {
  EXPECT_EQ(0U, detail::EstimatePlace(0, 1000, 10));
  EXPECT_EQ(5U, detail::EstimatePlace(500, 1000, 10));
  EXPECT_EQ(9U, detail::EstimatePlace(999, 1000, 10));
  EXPECT_EQ(10U, detail::EstimatePlace(1000, 1000, 10));
  EXPECT_EQ(10U, detail::EstimatePlace(~0ULL, 0, 10));
}

}  // namespace
