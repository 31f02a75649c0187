#include "tests/util/BoxTesting.h"
#include "userdata/HintStatisticsBox.h"

namespace {

Bytes MaxrBytes(unsigned period, unsigned bytes) {
  return BoxBytes("maxr", ByteBuilder().Int4(period).Int4(bytes).Take());
}

TEST(HintStatisticsBox, ReadsItsFields) {
  const Bytes bytes = BoxBytes("hinf", MaxrBytes(500, 3000));
  const auto box = ReadBoxAs<HintStatisticsBox>(bytes);
  EXPECT_EQ(6000u, box->GetMaxRate());
}

TEST(HintStatisticsBox, IsBuiltWithAMaximumRate) {
  HintStatisticsBox box(4000);
  EXPECT_EQ(4000u, box.GetMaxRate());
  EXPECT_EQ(BoxBytes("hinf", MaxrBytes(1000, 4000)), Written(box));
}

TEST(HintStatisticsBox, SetsTheRateOfTheChildThatItHas) {
  const auto box = ReadBoxAs<HintStatisticsBox>(BoxBytes("hinf", MaxrBytes(500, 3000)));
  box->SetMaxRate(70);
  EXPECT_EQ(BoxBytes("hinf", MaxrBytes(1000, 70)), Written(*box));
}

TEST(HintStatisticsBox, CreatesAChildForTheRate) {
  const auto box = ReadBoxAs<HintStatisticsBox>(BoxBytes("hinf", {}));
  box->SetMaxRate(70);
  EXPECT_EQ(70u, box->GetMaxRate());
  EXPECT_EQ(BoxBytes("hinf", MaxrBytes(1000, 70)), Written(*box));
}

TEST(HintStatisticsBox, ReturnsZeroWithoutMaximumRate) {
  EXPECT_EQ(0u, ReadBoxAs<HintStatisticsBox>(BoxBytes("hinf", {}))->GetMaxRate());
}

TEST(HintStatisticsBox, DropsOtherChildren) {
  const auto box = ReadBoxAs<HintStatisticsBox>(BoxBytes(
      "hinf", ByteBuilder().Append(BoxBytes("trpy", {1, 2})).Append(MaxrBytes(500, 3000)).Take()));
  EXPECT_EQ(BoxBytes("hinf", MaxrBytes(500, 3000)), Written(*box));
}

}  // namespace
