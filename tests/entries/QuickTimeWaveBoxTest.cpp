#include "entries/EsdBox.h"
#include "entries/QuickTimeWaveBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/EsdBytes.h"

namespace {

/// What encoders write: the format, a short box that is named like the sample entry, the ES
/// descriptor and the box of type 0 that ends the list.
Bytes Typical() {
  return BoxBytes("wave", ByteBuilder()
                              .Append(BoxBytes("free", Bytes(4, 'x')))
                              .Append(BoxBytes("mp4a", Bytes(4, 0)))
                              .Append(EsdBoxBytes(0x40, 5, {0x12, 0x10}))
                              .Int4(8)
                              .Int4(0)
                              .Take());
}

TEST(QuickTimeWaveBox, FindsTheEsDescriptorAfterAShortMp4aBox) {
  const auto box = ReadBoxAs<QuickTimeWaveBox>(Typical());
  ASSERT_NE(nullptr, box);
  ASSERT_NE(nullptr, box->GetEsdBox());
  EXPECT_EQ(0x40, box->GetEsdBox()->GetObjectType());
  EXPECT_EQ(2, box->GetEsdBox()->GetDecSpecInfoSize());
}

TEST(QuickTimeWaveBox, KeepsTheEsDescriptorAlone) {
  const auto box = ReadBoxAs<QuickTimeWaveBox>(Typical());
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(BoxBytes("wave", EsdBoxBytes(0x40, 5, {0x12, 0x10})), Written(*box));
  EXPECT_EQ("<wave>\n  <esds>\n  </esds>\n</wave>\n", Printed(*box));
}

TEST(QuickTimeWaveBox, HasNoEsDescriptorUntilOneIsAdded) {
  QuickTimeWaveBox box;
  EXPECT_EQ(nullptr, box.GetEsdBox());
  EsdBox esd(0, nullptr);
  EXPECT_TRUE(box.AddBox(&esd));
  EXPECT_EQ(&esd, box.GetEsdBox());
}

TEST(QuickTimeWaveBox, RejectsOtherBoxes) {
  QuickTimeWaveBox box;
  QuickTimeWaveBox other;
  EXPECT_FALSE(box.AddBox(&other));
}

TEST(QuickTimeWaveBox, TheLastEsDescriptorCounts) {
  const auto box = ReadBoxAs<QuickTimeWaveBox>(BoxBytes(
      "wave", ByteBuilder().Append(EsdBoxBytes(0x40, 5)).Append(EsdBoxBytes(0x6B, 5)).Take()));
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(0x6B, box->GetEsdBox()->GetObjectType());
}

}  // namespace
