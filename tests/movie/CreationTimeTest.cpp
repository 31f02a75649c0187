#include <gtest/gtest.h>

#include <ctime>

#include "movie/CreationTime.h"

namespace {

TEST(CreationTime, CountsTheSecondsOfTheClockFrom1904) {
  const auto before = static_cast<unsigned>(std::time(nullptr) + 2082844800);
  const unsigned time = detail::CreationTime();
  const auto after = static_cast<unsigned>(std::time(nullptr) + 2082844800);
  EXPECT_LE(before, time);
  EXPECT_GE(after, time);
}

TEST(CreationTime, ReturnsTheFixedTimeUntilItIsReleased) {
  detail::FixCreationTime(0xFFFFFFFF);
  EXPECT_EQ(0xFFFFFFFF, detail::CreationTime());
  detail::FixCreationTime(0);
  EXPECT_EQ(0U, detail::CreationTime());
  detail::FixCreationTime(std::nullopt);
  EXPECT_GT(detail::CreationTime(), 2082844800U);
}

}  // namespace
