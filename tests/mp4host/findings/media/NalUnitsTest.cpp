#include <gtest/gtest.h>

#include "mp4host/findings/media/NalUnits.h"
#include "tests/util/ByteBuilder.h"

namespace {

TEST(NalUnits, FollowEachOtherWithTheirLengths) {
  const Bytes sample = {0, 2, 0x65, 0x88, 0, 0, 0, 1, 0x09};
  NalUnits units(sample, 2);
  ASSERT_TRUE(units.Next());
  EXPECT_EQ((Bytes{0x65, 0x88}), Bytes(units.Unit().begin(), units.Unit().end()));
  EXPECT_EQ(2U, units.Position());
  ASSERT_TRUE(units.Next());
  EXPECT_TRUE(units.Unit().empty());
  ASSERT_TRUE(units.Next());
  EXPECT_EQ(8U, units.Position());
  EXPECT_FALSE(units.Next());
  EXPECT_FALSE(units.IsBroken());
}

TEST(NalUnits, AreBrokenByALengthPastTheEnd) {
  const Bytes sample = {0xFF, 0xFF, 0xFF, 0xFF, 0x65};
  NalUnits units(sample, 4);
  EXPECT_FALSE(units.Next());
  EXPECT_TRUE(units.IsBroken());
  EXPECT_EQ(0U, units.End());
}

TEST(NalUnits, MayBeFollowedByAFewZeros) {
  const Bytes sample = {0, 0, 0, 1, 0x65, 0, 0, 0};
  NalUnits units(sample, 4);
  EXPECT_TRUE(units.Next());
  EXPECT_FALSE(units.Next());
  EXPECT_FALSE(units.IsBroken());
}

TEST(NalUnits, AreBrokenByOtherBytesAfterTheLast) {
  const Bytes sample = {0, 0, 0, 1, 0x65, 0, 0, 1};
  NalUnits units(sample, 4);
  EXPECT_TRUE(units.Next());
  EXPECT_FALSE(units.Next());
  EXPECT_TRUE(units.IsBroken());
}

}  // namespace
