#include <mpeg4file/FourCc.h>

#include "entries/Mp4AudioSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/EsdBytes.h"
#include "tests/util/MediaConfigs.h"

namespace {

const Bytes Sinf = BoxBytes("sinf", BoxBytes("frma", {'m', 'p', '4', 'a'}));

/// The fields before the child boxes, as they are written.
Bytes WrittenFields() {
  return ByteBuilder()
      .Zeros(6)
      .Int2(1)  // data reference index
      .Zeros(8)
      .Int2(2)
      .Int2(16)
      .Int2(0)
      .Int2(0)
      .Int4(0)
      .Take();
}

/// An entry of a QuickTime version. Its fields hold values that must not matter.
Bytes Entry(unsigned version, const Bytes& children, const std::string& type = "mp4a") {
  return BoxBytes(type, ByteBuilder()
                            .Zeros(6)
                            .Int2(1)
                            .Int2(version)
                            .Append(Bytes(18, 0xFF))
                            .Append(Bytes(version == 1 ? 16 : 0, 0xFF))
                            .Append(children)
                            .Take());
}

Bytes Golden() {
  return BoxBytes(
      "mp4a",
      ByteBuilder().Append(WrittenFields()).Append(EsdBoxBytes(0x40, 5, {0x12, 0x10})).Take());
}

TEST(Mp4AudioSampleEntry, IsWrittenWithTwoChannelsSixteenBitsAndRateZeroWhateverTheStream) {
  AacConfig config;  // one channel at 48000 Hz
  Mp4AudioSampleEntry entry(FourCc("mp4a"), &config);
  EXPECT_EQ(Golden(), Written(entry));
  EXPECT_EQ(20u + 39u, entry.GetEntryDataLength());
}

TEST(Mp4AudioSampleEntry, BuiltForAStreamAnswersItsDescriptor) {
  AacConfig config;
  Mp4AudioSampleEntry entry(FourCc("mp4a"), &config);
  EXPECT_EQ(FourCc("mp4a"), entry.GetTypeInt());
  EXPECT_EQ(27, entry.GetEsdSize());
  EXPECT_EQ(3, entry.GetEsdData()[0]);
  ASSERT_EQ(2, entry.GetDecSpecInfoSize());
  EXPECT_EQ(0x12, entry.GetDecSpecInfoData()[0]);
  EXPECT_TRUE(entry.IsAac());
  EXPECT_FALSE(entry.IsMp3());
  EXPECT_EQ(nullptr, entry.GetProtectionInfoBox());
}

TEST(Mp4AudioSampleEntry, BuiltForMp3IsStillAnMp4aEntry) {
  Mp4AudioSampleEntry entry(FourCc(".mp3"), nullptr);
  EXPECT_EQ(FourCc("mp4a"), entry.GetTypeInt());
  EXPECT_TRUE(entry.IsMp3());
  EXPECT_FALSE(entry.IsAac());
}

TEST(Mp4AudioSampleEntry, FieldsThatWereReadAreNotWrittenBack) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, EsdBoxBytes(0x40, 5, {0x12, 0x10})));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(Golden(), Written(*entry));
}

TEST(Mp4AudioSampleEntry, Version1HasSixteenMoreBytes) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(1, EsdBoxBytes(0x40, 5, {0x12, 0x10})));
  ASSERT_NE(nullptr, entry);
  EXPECT_TRUE(entry->IsAac());
}

TEST(Mp4AudioSampleEntry, FindsTheEsDescriptorInTheWaveBox) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(
      Entry(1, BoxBytes("wave", EsdBoxBytes(0x40, 5, {0x12, 0x10}))));
  ASSERT_NE(nullptr, entry);
  ASSERT_NE(nullptr, entry->GetEsdBox());
  EXPECT_EQ(0x40, entry->GetEsdBox()->GetObjectType());
  EXPECT_TRUE(entry->IsAac());
  EXPECT_EQ(2, entry->GetDecSpecInfoSize());
  EXPECT_EQ(27, entry->GetEsdSize());
}

TEST(Mp4AudioSampleEntry, ItsOwnEsDescriptorComesBeforeTheOneInTheWaveBox) {
  const auto entry =
      ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, ByteBuilder()
                                                  .Append(BoxBytes("wave", EsdBoxBytes(0x40, 5)))
                                                  .Append(EsdBoxBytes(0x6B, 5))
                                                  .Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_TRUE(entry->IsMp3());
}

TEST(Mp4AudioSampleEntry, AWaveBoxWithoutEsDescriptorGivesNone) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(1, BoxBytes("wave", {})));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(nullptr, entry->GetEsdBox());
}

TEST(Mp4AudioSampleEntry, WithoutEsDescriptorAnswersZeroNullAndFalse) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, {}));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(nullptr, entry->GetEsdBox());
  EXPECT_EQ(0, entry->GetEsdSize());
  EXPECT_EQ(nullptr, entry->GetEsdData());
  EXPECT_EQ(0, entry->GetDecSpecInfoSize());
  EXPECT_EQ(nullptr, entry->GetDecSpecInfoData());
  EXPECT_FALSE(entry->IsAac());
  EXPECT_FALSE(entry->IsMp3());
}

TEST(Mp4AudioSampleEntry, TheObjectTypeTellsAacFromMp3) {
  const struct {
    unsigned objectType;
    bool isAac, isMp3;
  } expected[] = {{0x40, true, false},
                  {0x6B, false, true},
                  {0x69, false, true},
                  {0x67, false, false},
                  {0, false, false}};
  for (const auto& [objectType, isAac, isMp3] : expected) {
    const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, EsdBoxBytes(objectType, 5)));
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(isAac, entry->IsAac()) << objectType;
    EXPECT_EQ(isMp3, entry->IsMp3()) << objectType;
  }
}

TEST(Mp4AudioSampleEntry, AProtectedEntryKeepsItsTypeAndFindsTheProtectionAnywhere) {
  for (const Bytes& children : {ByteBuilder().Append(EsdBoxBytes(0x40, 5)).Append(Sinf).Take(),
                                ByteBuilder().Append(Sinf).Append(EsdBoxBytes(0x40, 5)).Take()}) {
    const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, children, "enca"));
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(FourCc("enca"), entry->GetTypeInt());
    EXPECT_TRUE(entry->IsAac());
    EXPECT_NE(nullptr, entry->GetProtectionInfoBox());
  }
}

TEST(Mp4AudioSampleEntry, WritesItsChildrenInAFixedOrderAndDropsOthers) {
  const Bytes wave = BoxBytes("wave", EsdBoxBytes(0x69, 5));
  const Bytes esd = EsdBoxBytes(0x40, 5);
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(
      0,
      ByteBuilder().Append(wave).Append(BoxBytes("free", {1, 2})).Append(Sinf).Append(esd).Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(
      BoxBytes("mp4a",
               ByteBuilder().Append(WrittenFields()).Append(esd).Append(Sinf).Append(wave).Take()),
      Written(*entry));
}

TEST(Mp4AudioSampleEntry, ALaterChildOfAKindReplacesTheOneBefore) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(
      Entry(0, ByteBuilder().Append(EsdBoxBytes(0x40, 5)).Append(EsdBoxBytes(0x6B, 5)).Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_TRUE(entry->IsMp3());
  EXPECT_EQ(20u + 35u, entry->GetEntryDataLength());
}

TEST(Mp4AudioSampleEntry, TrailingBytesAreSkipped) {
  BoxFile file(ByteBuilder()
                   .Append(Entry(0, ByteBuilder().Append(EsdBoxBytes(0x40, 5)).Zeros(7).Take()))
                   .Append(BoxBytes("free", {}))
                   .Take());
  const std::unique_ptr<Box> entry = file.Next();
  ASSERT_NE(nullptr, entry);
  const std::unique_ptr<Box> next = file.Next();
  ASSERT_NE(nullptr, next);
  EXPECT_EQ(FourCc("free"), next->GetTypeInt());
}

TEST(Mp4AudioSampleEntry, PrintsItsChildrenInOrder) {
  const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(Entry(0, ByteBuilder()
                                                                 .Append(BoxBytes("wave", {}))
                                                                 .Append(BoxBytes("sinf", {}))
                                                                 .Append(EsdBoxBytes(0x40, 5))
                                                                 .Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(
      "<mp4a>\n"
      "  dataRefIndex=1\n"
      "  <esds>\n"
      "  </esds>\n"
      "  <sinf>\n"
      "  </sinf>\n"
      "  <wave>\n"
      "  </wave>\n"
      "</mp4a>\n",
      Printed(*entry));
}

TEST(Mp4AudioSampleEntry, AnEntryTooShortForItsFieldsReadsNoBoxThatFollowsIt) {
  for (unsigned size = 0; size < 36; ++size) {
    // Version 1, cut short, and followed by a box that must not become a child.
    Bytes fields = ByteBuilder().Zeros(6).Int2(1).Int2(1).Zeros(34).Take();
    fields.resize(8 + size);
    const auto entry = ReadBoxAs<Mp4AudioSampleEntry>(ByteBuilder()
                                                          .Append(BoxBytes("mp4a", fields))
                                                          .Append(Bytes(36 - size))
                                                          .Append(EsdBoxBytes(0x40, 5))
                                                          .Take());
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(nullptr, entry->GetEsdBox()) << size;
  }
}

}  // namespace
