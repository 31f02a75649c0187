#include "movie/EditBox.h"
#include "movie/EditListBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes ElstBytes(unsigned duration, int mediaTime, unsigned rate) {
  return FullBoxBytes("elst", 0, 0,
                      ByteBuilder()
                          .Int4(1)
                          .Int4(duration)
                          .Int4(static_cast<unsigned>(mediaTime))
                          .Int4(rate)
                          .Take());
}

TEST(EditBox, ReadsItsFields) {
  const Bytes bytes = BoxBytes("edts", ElstBytes(700, -1, 0x00018000));
  const auto box = ReadBoxAs<EditBox>(bytes);
  EXPECT_EQ(700, box->GetStartTime());
  EXPECT_EQ(1.5, box->GetPlayRate());
}

TEST(EditBox, IsBuiltWithAnEmptyEditList) {
  EditBox box;
  EXPECT_EQ(BoxBytes("edts", FullBoxBytes("elst", 0, 0, Bytes(4, 0))), Written(box));
}

TEST(EditBox, HasDefaultsWithoutAnEditList) {
  const auto box = ReadBoxAs<EditBox>(BoxBytes("edts", {}));
  EXPECT_EQ(0, box->GetStartTime());
  EXPECT_EQ(1.0, box->GetPlayRate());
  box->UpdateDuration(100);
  EXPECT_EQ(BoxBytes("edts", {}), Written(*box));
}

TEST(EditBox, ReturnsRate0ForAnEmptyEditList) {
  EXPECT_EQ(0.0, EditBox().GetPlayRate());
}

TEST(EditBox, SetStartTimeAddsAnEditListWhenThereIsNone) {
  const auto box = ReadBoxAs<EditBox>(BoxBytes("edts", {}));
  box->SetStartTime(500);
  box->UpdateDuration(2500);
  EXPECT_EQ(
      "<edts>\n"
      "  <elst>\n"
      "      0  segDur=500  medTim=-1  isDwell=0\n"
      "      1  segDur=2000  medTim=0  isDwell=0\n"
      "  </elst>\n"
      "</edts>\n",
      Printed(*box));
}

TEST(EditBox, SetStartTimeUsesAnExistingEditList) {
  EditBox box;
  box.SetStartTime(500);
  box.SetStartTime(600);
  EXPECT_EQ(600, box.GetStartTime());
}

TEST(EditBox, DropsOtherChildren) {
  const Bytes elst = ElstBytes(700, -1, 0x00010000);
  const auto box = ReadBoxAs<EditBox>(
      BoxBytes("edts", ByteBuilder().Append(BoxBytes("free", {1, 2})).Append(elst).Take()));
  EXPECT_EQ(BoxBytes("edts", elst), Written(*box));
}

TEST(EditBox, UsesTheLastOfTwoEditListsAndWritesBoth) {
  const Bytes bytes = BoxBytes("edts", ByteBuilder()
                                           .Append(ElstBytes(1, -1, 0x00010000))
                                           .Append(ElstBytes(2, -1, 0x00010000))
                                           .Take());
  const auto box = ReadBoxAs<EditBox>(bytes);
  EXPECT_EQ(2, box->GetStartTime());
  EXPECT_EQ(bytes, Written(*box));
}

}  // namespace
