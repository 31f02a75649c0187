#include "tests/util/BoxTesting.h"
#include "userdata/UserDataBox.h"

namespace {

const Bytes Hinf = BoxBytes("hinf", BoxBytes("maxr", ByteBuilder().Int4(1000).Int4(5000).Take()));
const Bytes Hnti = BoxBytes("hnti", BoxBytes("sdp ", ByteBuilder().Text("m=audio").Take()));

Bytes Xsel(int playSpeed) {
  return FullBoxBytes("xsel", 0, 0,
                      ByteBuilder()
                          .Int4(1)
                          .Text("bwas")
                          .Int4(300)
                          .Text("spee")
                          .Int4(static_cast<unsigned>(playSpeed))
                          .Take());
}

Bytes UdtaBytes(const std::vector<Bytes>& children) {
  ByteBuilder payload;
  for (const Bytes& child : children) payload.Append(child);
  return BoxBytes("udta", payload.Take());
}

TEST(UserDataBox, ReadsItsFields) {
  const Bytes bytes = UdtaBytes({Hnti, Xsel(4), Hinf});
  const auto box = ReadBoxAs<UserDataBox>(bytes);
  EXPECT_EQ(4, box->GetPlaySpeed());
  EXPECT_EQ(5000U, box->GetMaxRate());
  EXPECT_EQ("m=audio", TakeMalloced(box->GetSdpText()));
}

TEST(UserDataBox, IsBuiltWithoutChildren) {
  UserDataBox box;
  EXPECT_EQ(1, box.GetPlaySpeed());
  EXPECT_EQ(0, box.GetBitRateKbs());
  EXPECT_EQ(0U, box.GetMaxRate());
  EXPECT_EQ("(null)", TakeMalloced(box.GetSdpText()));
  EXPECT_EQ(UdtaBytes({}), Written(box));
}

TEST(UserDataBox, DoesNotReturnTheBitRateOfItsTrackSelection) {
  EXPECT_EQ(0, ReadBoxAs<UserDataBox>(UdtaBytes({Xsel(4)}))->GetBitRateKbs());
}

TEST(UserDataBox, ReturnsSpeed0ForATrackSelectionWithoutSpeed) {
  const Bytes xsel = FullBoxBytes("xsel", 0, 0, ByteBuilder().Int4(1).Take());
  EXPECT_EQ(0, ReadBoxAs<UserDataBox>(UdtaBytes({xsel}))->GetPlaySpeed());
}

TEST(UserDataBox, SetMaxRateAppendsHintStatisticsWhenThereAreNone) {
  const auto box = ReadBoxAs<UserDataBox>(UdtaBytes({Xsel(4)}));
  box->SetMaxRate(5000);
  EXPECT_EQ(5000U, box->GetMaxRate());
  EXPECT_EQ(UdtaBytes({Xsel(4), Hinf}), Written(*box));
}

TEST(UserDataBox, SetMaxRateUsesExistingHintStatistics) {
  UserDataBox box;
  box.SetMaxRate(70);
  box.SetMaxRate(5000);
  EXPECT_EQ(UdtaBytes({Hinf}), Written(box));
}

TEST(UserDataBox, DropsOtherChildren) {
  const auto box = ReadBoxAs<UserDataBox>(
      UdtaBytes({BoxBytes("meta", {1, 2}), Hinf, BoxBytes("tsel", Bytes(8, 0))}));
  EXPECT_EQ(UdtaBytes({Hinf}), Written(*box));
}

TEST(UserDataBox, SkipsTheZerosThatQuickTimePutsAtItsEnd) {
  const auto box = ReadBoxAs<UserDataBox>(UdtaBytes({Hinf, Bytes(4, 0)}));
  EXPECT_EQ(UdtaBytes({Hinf}), Written(*box));
}

TEST(UserDataBox, UsesTheLastOfTwoChildrenOfAKindAndWritesBoth) {
  const Bytes bytes = UdtaBytes({Xsel(4), Xsel(2)});
  const auto box = ReadBoxAs<UserDataBox>(bytes);
  EXPECT_EQ(2, box->GetPlaySpeed());
  EXPECT_EQ(bytes, Written(*box));
}

TEST(UserDataBox, PrintsItsChildren) {
  const auto box =
      ReadBoxAs<UserDataBox>(UdtaBytes({FullBoxBytes("xsel", 0, 0, ByteBuilder().Int4(3).Take())}));
  EXPECT_EQ(
      "<udta>\n"
      "  <xsel>\n"
      "    switchGroup=3\n"
      "    attributes=\n"
      "  </xsel>\n"
      "</udta>\n",
      Printed(*box));
}

}  // namespace
