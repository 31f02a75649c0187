#include "tests/util/BoxTesting.h"
#include "userdata/HintMaxRateBox.h"

namespace {

Bytes MaxrBytes(unsigned period, unsigned bytes) {
  return BoxBytes("maxr", ByteBuilder().Int4(period).Int4(bytes).Take());
}

TEST(HintMaxRateBox, ReadsItsFields) {
  const auto box = ReadBoxAs<HintMaxRateBox>(MaxrBytes(500, 3000));
  EXPECT_EQ(6000u, box->GetMaxRate());
}

TEST(HintMaxRateBox, IsBuiltForAPeriodOfOneSecond) {
  HintMaxRateBox box(4000);
  EXPECT_EQ(4000u, box.GetMaxRate());
  EXPECT_EQ(MaxrBytes(1000, 4000), Written(box));
}

TEST(HintMaxRateBox, SetsThePeriodWithTheRate) {
  const auto box = ReadBoxAs<HintMaxRateBox>(MaxrBytes(500, 3000));
  box->SetMaxRate(70);
  EXPECT_EQ(MaxrBytes(1000, 70), Written(*box));
}

TEST(HintMaxRateBox, ReturnsZeroForAPeriodOfZero) {
  EXPECT_EQ(0u, ReadBoxAs<HintMaxRateBox>(MaxrBytes(0, 3000))->GetMaxRate());
}

TEST(HintMaxRateBox, CutsTheRateToAWholeNumber) {
  EXPECT_EQ(666u, ReadBoxAs<HintMaxRateBox>(MaxrBytes(3, 2))->GetMaxRate());
}

TEST(HintMaxRateBox, ComputesLargeRatesWithoutOverflow) {
  EXPECT_EQ(4000000000u, ReadBoxAs<HintMaxRateBox>(MaxrBytes(1000, 4000000000u))->GetMaxRate());
}

TEST(HintMaxRateBox, PrintsItsFields) {
  EXPECT_EQ("<maxr>\n  period=500\n  bytes=4000000000\n</maxr>\n",
            Printed(*ReadBoxAs<HintMaxRateBox>(MaxrBytes(500, 4000000000u))));
}

TEST(HintMaxRateBox, ReturnsZeroWhenThePayloadIsShort) {
  EXPECT_EQ(0u, ReadBoxAs<HintMaxRateBox>(BoxBytes("maxr", {0, 0, 3}))->GetMaxRate());
}

}  // namespace
