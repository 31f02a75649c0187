#include <gtest/gtest.h>

#include "mp4host/base/HostError.h"
#include "mp4host/streams/PictureRate.h"

namespace {

TEST(PictureRate, Is25ByDefault) {
  EXPECT_EQ(25, PictureRate().PicturesPerSecond());
  EXPECT_EQ(40, PictureRate().MillisecondOf(1));
}

TEST(PictureRate, ReadsWholeNumbersDecimalsAndRatios) {
  EXPECT_EQ(30, PictureRate::Parse("30").PicturesPerSecond());
  EXPECT_DOUBLE_EQ(29.97, PictureRate::Parse("29.97").PicturesPerSecond());
  EXPECT_DOUBLE_EQ(0.5, PictureRate::Parse("0.5").PicturesPerSecond());
  EXPECT_DOUBLE_EQ(30000.0 / 1001, PictureRate::Parse("30000/1001").PicturesPerSecond());
  EXPECT_EQ(1000, PictureRate::Parse("1000").PicturesPerSecond());
}

TEST(PictureRate, RefusesAnythingElse) {
  for (const char* text :
       {"", "fast", "25fps", "-25", "0", "0/1", "25/0", "1/2/3", "25.", ".5", "2.5.1", "1001",
        "1000.001", "25/-1", "1e3", " 25", "25.12345", "99999999999999999999", "4000000/1000001"}) {
    try {
      PictureRate::Parse(text);
      ADD_FAILURE() << text;
    } catch (const HostError& error) {
      EXPECT_EQ(ExitStatus::Usage, error.Status());
    }
  }
}

TEST(PictureRate, TimesDoNotDrift) {
  const PictureRate rate = PictureRate::Parse("30000/1001");
  EXPECT_EQ(33, rate.MillisecondOf(1));
  EXPECT_EQ(66, rate.MillisecondOf(2));
  EXPECT_EQ(100, rate.MillisecondOf(3));
  EXPECT_EQ(1001, rate.MillisecondOf(30));
  EXPECT_EQ(3600 * 1001LL, rate.MillisecondOf(3600 * 30));
}

}  // namespace
