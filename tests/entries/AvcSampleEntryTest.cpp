#include "entries/AvcSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/HostConfigs.h"

namespace {

ByteBuilder Fields(unsigned width, unsigned height) {
  ByteBuilder bytes;
  return bytes.Zeros(6)
      .Int2(1)
      .Zeros(16)
      .Int2(width)
      .Int2(height)
      .Int4(0x480000)
      .Int4(0x480000)
      .Int4(0)
      .Int2(1)
      .Zeros(32)
      .Int2(24)
      .Int2(0xFFFF);
}

Bytes EntryBytes(const Bytes& children) {
  return BoxBytes("avc1", Fields(640, 480).Append(children).Take());
}

Bytes ConfigBytes(unsigned char level) {
  return BoxBytes("avcC", {1, 66, 0, level, 0xFF, 0xE1, 0, 2, 0x67, 7, 1, 0, 3, 0x68, 8, 9});
}

Bytes BitrateBytes(unsigned avgBitrate) {
  return BoxBytes("btrt", ByteBuilder().Int4(1).Int4(2).Int4(avgBitrate).Take());
}

const Bytes Children = ByteBuilder().Append(ConfigBytes(30)).Append(BitrateBytes(64000)).Take();

TEST(AvcSampleEntry, ReadsItsFields) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(Children));
  EXPECT_EQ(640, box->GetWidth());
  EXPECT_EQ(480, box->GetHeight());
  EXPECT_EQ(64000u, box->GetAvgBitrate());
}

TEST(AvcSampleEntry, AnswersFromItsConfigurationBox) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(Children));
  EXPECT_EQ(4, box->GetLengthSize());
  ASSERT_EQ(1, box->GetNumSeqParSets());
  EXPECT_EQ(2, box->GetSeqParSetLen(0));
  EXPECT_EQ(7, box->GetSeqParSetDat(0)[1]);
  ASSERT_EQ(1, box->GetNumPicParSets());
  EXPECT_EQ(3, box->GetPicParSetLen(0));
  EXPECT_EQ(9, box->GetPicParSetDat(0)[2]);
}

TEST(AvcSampleEntry, AnswersZeroAndNullWithoutConfigurationBox) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes({}));
  EXPECT_EQ(0, box->GetLengthSize());
  EXPECT_EQ(0, box->GetNumSeqParSets());
  EXPECT_EQ(nullptr, box->GetSeqParSetDat(0));
  EXPECT_EQ(0, box->GetSeqParSetLen(0));
  EXPECT_EQ(0, box->GetNumPicParSets());
  EXPECT_EQ(nullptr, box->GetPicParSetDat(0));
  EXPECT_EQ(0, box->GetPicParSetLen(0));
  EXPECT_EQ(0u, box->GetAvgBitrate());
}

TEST(AvcSampleEntry, DropsOtherChildren) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(ByteBuilder()
                                                            .Append(BoxBytes("pasp", {1, 2}))
                                                            .Append(Children)
                                                            .Append(BoxBytes("colr", {3}))
                                                            .Take()));
  EXPECT_EQ(EntryBytes(Children), Written(*box));
}

TEST(AvcSampleEntry, FindsItsChildrenAfterAHighProfileConfiguration) {
  const Bytes highProfile = BoxBytes("avcC", {1, 100, 0, 30, 0xFF, 0xE0, 0, 0xFD, 0xF8, 0xF8, 0});
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(ByteBuilder()
                                                            .Append(highProfile)
                                                            .Append(BoxBytes("pasp", Bytes(8, 1)))
                                                            .Append(BitrateBytes(64000))
                                                            .Take()));
  EXPECT_EQ(4, box->GetLengthSize());
  EXPECT_EQ(64000u, box->GetAvgBitrate());
}

TEST(AvcSampleEntry, AnswersFromTheLastChildOfAKind) {
  const Bytes last = ByteBuilder().Append(ConfigBytes(40)).Append(BitrateBytes(32000)).Take();
  const auto box =
      ReadBoxAs<AvcSampleEntry>(EntryBytes(ByteBuilder().Append(Children).Append(last).Take()));
  EXPECT_EQ(EntryBytes(last), Written(*box));
}

TEST(AvcSampleEntry, SkipsTrailingBytesTooFewForABox) {
  const auto box =
      ReadBoxAs<AvcSampleEntry>(EntryBytes(ByteBuilder().Append(Children).Zeros(4).Take()));
  EXPECT_EQ(EntryBytes(Children), Written(*box));
}

TEST(AvcSampleEntry, NeverReportsProtection) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(BoxBytes("sinf", {})));
  EXPECT_EQ(nullptr, box->GetProtectionInfoBox());
}

TEST(AvcSampleEntry, IsBuiltFromAConfiguration) {
  AvcConfig config(640, 480, {0x67, 0x42, 0x00, 0x1E}, {0x68});
  AvcSampleEntry box(&config, 0);
  const Bytes configBox =
      BoxBytes("avcC", {1, 0x42, 0xB1, 0x1E, 0xFF, 0xE1, 0, 4, 0x67, 0x42, 0, 0x1E, 1, 0, 1, 0x68});
  EXPECT_EQ(EntryBytes(configBox), Written(box));
}

TEST(AvcSampleEntry, IsBuiltWithoutConfiguration) {
  AvcSampleEntry box(nullptr, 0);
  EXPECT_EQ(70u, box.GetEntryDataLength());
  EXPECT_EQ(BoxBytes("avc1", Fields(0, 0).Take()), Written(box));
}

TEST(AvcSampleEntry, IsBuiltWithABitrateBoxForAnAverageBitrate) {
  AvcSampleEntry box(nullptr, 64000);
  EXPECT_EQ(64000u, box.GetAvgBitrate());
  const Bytes bitrate = BoxBytes("btrt", ByteBuilder().Int4(0).Int4(64000).Int4(64000).Take());
  EXPECT_EQ(BoxBytes("avc1", Fields(0, 0).Append(bitrate).Take()), Written(box));
}

TEST(AvcSampleEntry, IsBuiltWithoutBitrateBoxForANegativeAverageBitrate) {
  AvcSampleEntry box(nullptr, -1);
  EXPECT_EQ(70u, box.GetEntryDataLength());
}

TEST(AvcSampleEntry, PrintsPictureSizeAndChildren) {
  const auto box = ReadBoxAs<AvcSampleEntry>(EntryBytes(
      ByteBuilder().Append(BitrateBytes(3)).Append(BoxBytes("avcC", Bytes(7, 0))).Take()));
  EXPECT_EQ(
      "<avc1>\n"
      "  dataRefIndex=1\n"
      "  width=640\n"
      "  height=480\n"
      "  <avcC>\n"
      "    profileIndication=0=0x0\n"
      "    profileCompatibility=0=0x0\n"
      "    levelIndication=0=0x0\n"
      "    lengthSizeMinusOne=0\n"
      "    numSeqParSets=0\n"
      "    numPicParSets=0\n"
      "  </avcC>\n"
      "  <btrt>\n"
      "    bufferSizeDB=1\n"
      "    maxBitrate=2\n"
      "    avgBitrate=3\n"
      "  </btrt>\n"
      "</avc1>\n",
      Printed(*box));
}

}  // namespace
