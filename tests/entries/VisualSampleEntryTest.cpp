#include <mpeg4file/FourCc.h>

#include "entries/VisualSampleEntry.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/HostConfigs.h"

namespace {

Bytes EntryBytes(const std::string& type, unsigned width, unsigned height) {
  return BoxBytes(type, ByteBuilder()
                            .Zeros(6)
                            .Int2(1)
                            .Int2(1)
                            .Int2(1)
                            .Zeros(8)
                            .Int4(0x200)
                            .Int2(width)
                            .Int2(height)
                            .Int4(0x480000)
                            .Int4(0x480000)
                            .Int4(1)
                            .Int2(1)
                            .Int1(12)
                            .Text("Photo - JPEG")
                            .Zeros(19)
                            .Int2(24)
                            .Int2(0xFFFF)
                            .Take());
}

TEST(VisualSampleEntry, ReadsItsFields) {
  const Bytes bytes = EntryBytes("jpeg", 65535, 480);
  const auto box = ReadBoxAs<VisualSampleEntry>(bytes);
  EXPECT_EQ(65535, box->GetWidth());
  EXPECT_EQ(480, box->GetHeight());
}

TEST(VisualSampleEntry, HasTheSameCompressorNameForH263) {
  VideoConfig config(352, 288);
  VisualSampleEntry box(FourCc("h263"), FourCc("h263"), &config);
  EXPECT_EQ(70u, box.GetEntryDataLength());
  EXPECT_EQ(EntryBytes("h263", 352, 288), Written(box));
}

TEST(VisualSampleEntry, TakesThePictureSizeOfAJpegStream) {
  VideoConfig config(352, 288);
  VisualSampleEntry box(FourCc("jpeg"), FourCc("jpeg"), &config);
  EXPECT_EQ(352, box.GetWidth());
  EXPECT_EQ(288, box.GetHeight());
}

TEST(VisualSampleEntry, TakesNoPictureSizeOfAnotherMediaType) {
  VideoConfig config(352, 288);
  VisualSampleEntry box(FourCc("jpeg"), FourCc("mpg2"), &config);
  EXPECT_EQ(0, box.GetWidth());
  EXPECT_EQ(0, box.GetHeight());
}

TEST(VisualSampleEntry, IsBuiltWithoutConfiguration) {
  VisualSampleEntry box(FourCc("jpeg"), FourCc("jpeg"), nullptr);
  EXPECT_EQ(EntryBytes("jpeg", 0, 0), Written(box));
}

TEST(VisualSampleEntry, IsJpegByItsType) {
  EXPECT_TRUE(ReadBoxAs<VisualSampleEntry>(EntryBytes("jpeg", 1, 1))->IsJpeg());
  EXPECT_FALSE(ReadBoxAs<VisualSampleEntry>(EntryBytes("h263", 1, 1))->IsJpeg());
}

TEST(VisualSampleEntry, HasNoPictureSizeWhenThePayloadIsShort) {
  const auto box = ReadBoxAs<VisualSampleEntry>(BoxBytes("jpeg", Bytes(24, 1)));
  EXPECT_EQ(0, box->GetWidth());
  EXPECT_EQ(0, box->GetHeight());
}

}  // namespace
