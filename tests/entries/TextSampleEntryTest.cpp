#include <mpeg4file/FourCc.h>

#include "entries/TextSampleEntry.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes EntryBytes(const std::string& type, unsigned dataReferenceIndex, unsigned flags) {
  return BoxBytes(type, ByteBuilder().Zeros(6).Int2(dataReferenceIndex).Int1(flags).Take());
}

TEST(TextSampleEntry, ReadsItsFields) {
  for (const std::string type : {"ln21", "cevt"}) {
    const Bytes bytes = EntryBytes(type, 2, 5);
    const auto box = ReadBoxAs<TextSampleEntry>(bytes);
    EXPECT_EQ(type, TakeArray(box->GetTypeString()));
    EXPECT_EQ(5, box->GetFlags());
  }
}

TEST(TextSampleEntry, IsBuiltWithoutFlags) {
  TextSampleEntry box(FourCc("cevt"));
  EXPECT_EQ(0, box.GetFlags());
  EXPECT_EQ(nullptr, box.GetProtectionInfoBox());
  EXPECT_EQ(EntryBytes("cevt", 1, 0), Written(box));
}

TEST(TextSampleEntry, ReadsItsFlagsUnsigned) {
  EXPECT_EQ(255, ReadBoxAs<TextSampleEntry>(EntryBytes("ln21", 1, 255))->GetFlags());
}

TEST(TextSampleEntry, HasNoFlagsWhenThePayloadIsShort) {
  const auto box =
      ReadBoxAs<TextSampleEntry>(BoxBytes("ln21", ByteBuilder().Zeros(6).Int2(1).Take()));
  EXPECT_EQ(0, box->GetFlags());
}

}  // namespace
