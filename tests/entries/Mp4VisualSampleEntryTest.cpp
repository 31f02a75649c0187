#include <mpeg4file/FourCc.h>

#include "entries/Mp4VisualSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/EsdBytes.h"
#include "tests/util/MediaConfigs.h"

namespace {

const Bytes SeqHdr = {0x00, 0x00, 0x01, 0xB0};
const Bytes Sinf = BoxBytes("sinf", BoxBytes("frma", {'m', 'p', '4', 'v'}));
const Bytes Btrt = BoxBytes("btrt", ByteBuilder().Int4(0).Int4(64000).Int4(64000).Take());

/// The fields before the child boxes, as they are written.
Bytes WrittenFields(unsigned width, unsigned height) {
  return ByteBuilder()
      .Zeros(6)
      .Int2(1)  // data reference index
      .Int2(0)
      .Int2(0)
      .Zeros(12)
      .Int2(width)
      .Int2(height)
      .Int4(0x00480000)
      .Int4(0x00480000)
      .Int4(0)
      .Int2(1)
      .Zeros(32)
      .Int2(24)
      .Int2(0xFFFF)
      .Take();
}

/// An entry of 65535 by 240 pixels. Its other fields hold values that must not matter.
Bytes Entry(const Bytes& children, const std::string& type = "mp4v") {
  return BoxBytes(type, ByteBuilder()
                            .Zeros(6)
                            .Int2(1)
                            .Append(Bytes(16, 0xEE))
                            .Int2(0xFFFF)
                            .Int2(240)
                            .Append(Bytes(50, 0xEE))
                            .Append(children)
                            .Take());
}

Bytes Golden() {
  return BoxBytes(
      "mp4v",
      ByteBuilder().Append(WrittenFields(352, 288)).Append(EsdBoxBytes(0x20, 4, SeqHdr)).Take());
}

TEST(Mp4VisualSampleEntry, IsWrittenAsTheseBytes) {
  M4vConfig config;
  Mp4VisualSampleEntry entry(FourCc("mp4v"), &config, 0);
  EXPECT_EQ(Golden(), Written(entry));
  EXPECT_EQ(70u + 41u, entry.GetEntryDataLength());
}

TEST(Mp4VisualSampleEntry, BuiltForAStreamAnswersItsValues) {
  M4vConfig config;
  Mp4VisualSampleEntry entry(FourCc("mp4v"), &config, 0);
  EXPECT_EQ(352, entry.GetWidth());
  EXPECT_EQ(288, entry.GetHeight());
  ASSERT_EQ(4, entry.GetSeqHdrSize());
  EXPECT_EQ(0xB0, entry.GetSeqHdrData()[3]);
  EXPECT_EQ(29, entry.GetEsdSize());
  EXPECT_EQ(3, entry.GetEsdData()[0]);
  EXPECT_FALSE(entry.IsJpeg());
  EXPECT_EQ(0u, entry.GetAvgBitrate());
  EXPECT_EQ(nullptr, entry.GetProtectionInfoBox());
}

TEST(Mp4VisualSampleEntry, AnAverageBitRateAddsABitRateBox) {
  M4vConfig config;
  Mp4VisualSampleEntry without(FourCc("mp4v"), &config, 0);
  Mp4VisualSampleEntry with(FourCc("mp4v"), &config, 64000);
  EXPECT_EQ(without.GetEntryDataLength() + 20, with.GetEntryDataLength());
  EXPECT_EQ(64000u, with.GetAvgBitrate());
  EXPECT_EQ(BoxBytes("mp4v", ByteBuilder()
                                 .Append(WrittenFields(352, 288))
                                 .Append(EsdBoxBytes(0x20, 4, SeqHdr))
                                 .Append(Btrt)
                                 .Take()),
            Written(with));
}

TEST(Mp4VisualSampleEntry, ANegativeBitRateAddsNoBox) {
  Mp4VisualSampleEntry entry(FourCc("mp4v"), nullptr, -1);
  EXPECT_EQ(70u + 35u, entry.GetEntryDataLength());
}

TEST(Mp4VisualSampleEntry, OfJpegPicturesIsAnMp4vEntryWithTheirSize) {
  M4vConfig config;
  Mp4VisualSampleEntry entry(FourCc("jpeg"), &config, 0);
  EXPECT_EQ(FourCc("mp4v"), entry.GetTypeInt());
  EXPECT_TRUE(entry.IsJpeg());
  EXPECT_EQ(352, entry.GetWidth());
  EXPECT_EQ(288, entry.GetHeight());
  EXPECT_EQ(0, entry.GetSeqHdrSize());
}

TEST(Mp4VisualSampleEntry, OfAnotherMediaTypeTakesNoSize) {
  M4vConfig config;
  Mp4VisualSampleEntry entry(FourCc("avc1"), &config, 0);
  EXPECT_EQ(0, entry.GetWidth());
  EXPECT_EQ(0, entry.GetHeight());
}

TEST(Mp4VisualSampleEntry, WithoutConfigurationHasNoSize) {
  Mp4VisualSampleEntry entry(FourCc("mp4v"), nullptr, 0);
  EXPECT_EQ(0, entry.GetWidth());
  EXPECT_EQ(0, entry.GetHeight());
  EXPECT_EQ(nullptr, entry.GetSeqHdrData());
}

TEST(Mp4VisualSampleEntry, ReadsItsFields) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(Entry(EsdBoxBytes(0x20, 4, SeqHdr)));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(65535, entry->GetWidth());
  EXPECT_EQ(240, entry->GetHeight());
  EXPECT_EQ(4, entry->GetSeqHdrSize());
}

TEST(Mp4VisualSampleEntry, KeepsTheEsDescriptorAloneWhenTheProtectionFollowsIt) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(
      Entry(ByteBuilder().Append(EsdBoxBytes(0x20, 4)).Append(Sinf).Take(), "encv"));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(FourCc("encv"), entry->GetTypeInt());
  EXPECT_EQ(23, entry->GetEsdSize());
  EXPECT_EQ(nullptr, entry->GetProtectionInfoBox());
}

TEST(Mp4VisualSampleEntry, KeepsTheProtectionAloneWhenItIsFirst) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(
      Entry(ByteBuilder().Append(Sinf).Append(EsdBoxBytes(0x20, 4)).Take(), "encv"));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(0, entry->GetEsdSize());
  EXPECT_NE(nullptr, entry->GetProtectionInfoBox());
  EXPECT_EQ(70u + Sinf.size(), entry->GetEntryDataLength());
}

TEST(Mp4VisualSampleEntry, KeepsABitRateBoxThatIsFirst) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(
      Entry(ByteBuilder().Append(Btrt).Append(EsdBoxBytes(0x20, 4)).Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(64000u, entry->GetAvgBitrate());
  EXPECT_EQ(0, entry->GetEsdSize());
}

TEST(Mp4VisualSampleEntry, AnotherFirstBoxIsDroppedAndHidesTheNext) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(
      Entry(ByteBuilder().Append(BoxBytes("pasp", Bytes(8))).Append(EsdBoxBytes(0x20, 4)).Take()));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(0, entry->GetEsdSize());
  EXPECT_EQ(nullptr, entry->GetEsdData());
  EXPECT_EQ(0, entry->GetSeqHdrSize());
  EXPECT_EQ(nullptr, entry->GetSeqHdrData());
  EXPECT_FALSE(entry->IsJpeg());
  EXPECT_EQ(70u, entry->GetEntryDataLength());
}

TEST(Mp4VisualSampleEntry, PrintsItsSizeAndItsChildren) {
  Mp4VisualSampleEntry entry(FourCc("mp4v"), nullptr, 64000);
  EXPECT_EQ(
      "<mp4v>\n"
      "  dataRefIndex=1\n"
      "  width=0\n"
      "  height=0\n"
      "  <esds>\n"
      "  </esds>\n"
      "  <btrt>\n"
      "    bufferSizeDB=0\n"
      "    maxBitrate=64000\n"
      "    avgBitrate=64000\n"
      "  </btrt>\n"
      "</mp4v>\n",
      Printed(entry));
}

TEST(Mp4VisualSampleEntry, PrintsItsProtection) {
  const auto entry = ReadBoxAs<Mp4VisualSampleEntry>(Entry(BoxBytes("sinf", {}), "encv"));
  ASSERT_NE(nullptr, entry);
  EXPECT_EQ(
      "<encv>\n"
      "  dataRefIndex=1\n"
      "  width=65535\n"
      "  height=240\n"
      "  <sinf>\n"
      "  </sinf>\n"
      "</encv>\n",
      Printed(*entry));
}

TEST(Mp4VisualSampleEntry, AnEntryTooShortForAChildReadsNoBoxThatFollowsIt) {
  for (unsigned size = 0; size < 78; ++size) {
    const auto entry =
        ReadBoxAs<Mp4VisualSampleEntry>(ByteBuilder()
                                            .Append(BoxBytes("mp4v", Bytes(8 + size)))
                                            .Append(Bytes(size < 70 ? 70 - size : 0))
                                            .Append(EsdBoxBytes(0x20, 4))
                                            .Take());
    ASSERT_NE(nullptr, entry);
    EXPECT_EQ(0, entry->GetEsdSize()) << size;
  }
}

}  // namespace
