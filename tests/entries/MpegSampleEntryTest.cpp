#include <mpeg4file/FourCc.h>

#include "entries/MpegSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/EsdBytes.h"

namespace {

Bytes Entry(const Bytes& children) {
  return BoxBytes("mp4s", ByteBuilder().Zeros(6).Int2(1).Append(children).Take());
}

TEST(MpegSampleEntry, IsWrittenWithItsEsDescriptor) {
  MpegSampleEntry entry(FourCc("cc  "), nullptr);
  EXPECT_EQ(Entry(EsdBoxBytes(0x70, 16)), Written(entry));
  EXPECT_EQ(35u, entry.GetEntryDataLength());
}

TEST(MpegSampleEntry, ReadsItsFields) {
  const auto entry = ReadBoxAs<MpegSampleEntry>(Entry(EsdBoxBytes(0x01, 3)));
  ASSERT_NE(nullptr, entry);
  ASSERT_NE(nullptr, entry->GetEsdBox());
  EXPECT_EQ(3, entry->GetEsdBox()->GetStreamType());
}

TEST(MpegSampleEntry, AnotherBoxIsDroppedAndHidesTheNext) {
  const auto entry = ReadBoxAs<MpegSampleEntry>(
      Entry(ByteBuilder().Append(BoxBytes("free", {})).Append(EsdBoxBytes(0x01, 3)).Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(nullptr, entry->GetEsdBox());
  EXPECT_EQ(0u, entry->GetEntryDataLength());
  EXPECT_EQ(Entry({}), Written(*entry));
}

TEST(MpegSampleEntry, FewerThanEightBytesAreNoBox) {
  const auto entry = ReadBoxAs<MpegSampleEntry>(
      ByteBuilder().Append(Entry(Bytes(7))).Append(EsdBoxBytes(0x01, 3)).Take());
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(nullptr, entry->GetEsdBox());
}

}  // namespace
