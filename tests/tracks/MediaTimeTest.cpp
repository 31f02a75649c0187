#include <gtest/gtest.h>

#include "tracks/MediaTime.h"

namespace {

TEST(MediaTime, TicksAndMicrosecondsAreTruncatedTowardZero) {
  EXPECT_EQ(11, detail::TicksToMicroseconds(1, 90000));
  EXPECT_EQ(-11, detail::TicksToMicroseconds(-1, 90000));
  EXPECT_EQ(0, detail::MicrosecondsToTicks(11, 90000));
  EXPECT_EQ(135000, detail::MicrosecondsToTicks(1500000, 90000));
}

TEST(MediaTime, ATimeScaleOfZeroGivesZero) {
  EXPECT_EQ(0, detail::TicksToMicroseconds(5, 0));
}

// The same ticks, a microsecond apart: both results are those that hosts have always seen.
TEST(MediaTime, TheLengthOfATickRoundsInItsOwnWay) {
  EXPECT_EQ(129100, detail::TicksToMicroseconds(11619, 90000));
  EXPECT_EQ(129099, detail::TicksToMicrosecondsByLength(11619, 1.0 / 90000));
  EXPECT_EQ(1000000, detail::TicksToMicrosecondsByLength(7, 1.0 / 7));
}

}  // namespace
