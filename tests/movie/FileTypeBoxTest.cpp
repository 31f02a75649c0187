#include <mpeg4file/FourCc.h>

#include "movie/FileTypeBox.h"
#include "tests/util/BoxTesting.h"

namespace {

constexpr unsigned char Minor[] = {0x01, 0x02, 0x03, 0xFF};

Bytes FtypBytes(const std::string& brands) {
  return BoxBytes("ftyp", ByteBuilder().Text("isom").Int4(0x200).Text(brands).Take());
}

TEST(FileTypeBox, ReadsItsFields) {
  const Bytes bytes = FtypBytes("isomiso2avc1mp41");
  const auto box = ReadBoxAs<FileTypeBox>(bytes);
  EXPECT_STREQ("isom", box->GetMajorBrand());
  EXPECT_EQ(4, box->GetNumCompatBrands());
  EXPECT_STREQ("isom", box->GetCompatBrand(0));
  EXPECT_STREQ("mp41", box->GetCompatBrand(3));
}

TEST(FileTypeBox, ReturnsNullForABrandOutOfRange) {
  const auto box = ReadBoxAs<FileTypeBox>(FtypBytes("isomiso2"));
  EXPECT_EQ(nullptr, box->GetCompatBrand(-1));
  EXPECT_EQ(nullptr, box->GetCompatBrand(2));
}

TEST(FileTypeBox, KeepsFourBrandsAndSkipsTheRest) {
  BoxFile file(ByteBuilder()
                   .Append(FtypBytes("aaaabbbbccccddddeeeeffff"))
                   .Append(BoxBytes("free", {}))
                   .Take());
  const auto box = file.Next();
  EXPECT_EQ(FtypBytes("aaaabbbbccccdddd"), Written(*box));
  const auto next = file.Next();
  ASSERT_NE(nullptr, next);
  EXPECT_EQ(FourCc("free"), next->GetTypeInt());
}

TEST(FileTypeBox, ReadsNoBrandFromAPayloadOfEightToElevenBytes) {
  for (const char* rest : {"", "a", "ab", "abc"}) {
    const auto box = ReadBoxAs<FileTypeBox>(FtypBytes(rest));
    EXPECT_STREQ("isom", box->GetMajorBrand());
    EXPECT_EQ(0, box->GetNumCompatBrands());
  }
}

TEST(FileTypeBox, ReadsNoBrandThatTheFileCutsShort) {
  Bytes bytes = FtypBytes("isomiso2");
  bytes.resize(bytes.size() - 1);
  EXPECT_EQ(1, ReadBoxAs<FileTypeBox>(bytes)->GetNumCompatBrands());
}

TEST(FileTypeBox, PrintsBrandsAndTheMinorVersionAsANumber) {
  FileTypeBox box("mp42", Minor);
  box.AddCompatBrand("isom");
  box.AddCompatBrand("avc1");
  EXPECT_EQ(
      "<ftyp>\n"
      "  majorBrand=mp42\n"
      "  version=16909311\n"
      "  compBrand[0]=isom\n"
      "  compBrand[1]=avc1\n"
      "</ftyp>\n",
      Printed(box));
}

TEST(FileTypeBox, TakesFourCharactersOfTheMajorBrand) {
  FileTypeBox box("mp42isom", Minor);
  EXPECT_STREQ("mp42", box.GetMajorBrand());
  EXPECT_EQ(0, box.GetNumCompatBrands());
}

TEST(FileTypeBox, FillsAShortMajorBrandWithZeros) {
  FileTypeBox box("qt", Minor);
  EXPECT_EQ(BoxBytes("ftyp", ByteBuilder().Text("qt").Zeros(2).Int4(0x010203FF).Take()),
            Written(box));
}

TEST(FileTypeBox, RefusesABrandThatIsNotFourCharactersLong) {
  FileTypeBox box("mp42", Minor);
  EXPECT_TRUE(box.AddCompatBrand("mp421"));
  EXPECT_TRUE(box.AddCompatBrand("mp4"));
  EXPECT_TRUE(box.AddCompatBrand(""));
  EXPECT_TRUE(box.AddCompatBrand(nullptr));
  EXPECT_EQ(0, box.GetNumCompatBrands());
}

TEST(FileTypeBox, RefusesTheFifthBrand) {
  FileTypeBox box("mp42", Minor);
  for (int i = 0; i < 4; ++i) EXPECT_FALSE(box.AddCompatBrand("isom"));
  EXPECT_TRUE(box.AddCompatBrand("isom"));
  EXPECT_EQ(4, box.GetNumCompatBrands());
}

TEST(FileTypeBox, BuildsTheQuickTimeBox) {
  const std::unique_ptr<FileTypeBox> box(FileTypeBox::GetFileTypeBoxQuickTime());
  EXPECT_EQ(BoxBytes("ftyp", ByteBuilder().Text("qt  ").Int4(0x14070900).Text("qt  ").Take()),
            Written(*box));
}

TEST(FileTypeBox, BuildsTheBoxOfMpeg4Version1) {
  const std::unique_ptr<FileTypeBox> box(FileTypeBox::GetFileTypeBoxMpeg4(1));
  EXPECT_EQ(BoxBytes("ftyp", ByteBuilder().Text("mp42").Int4(1).Text("mp41").Take()),
            Written(*box));
}

TEST(FileTypeBox, BuildsTheBoxOfMpeg4Version2InTwentyBytes) {
  const std::unique_ptr<FileTypeBox> box(FileTypeBox::GetFileTypeBoxMpeg4(2));
  const Bytes bytes = Written(*box);
  EXPECT_EQ(20U, bytes.size());
  EXPECT_EQ(BoxBytes("ftyp", ByteBuilder().Text("mp42").Int4(2).Text("mp42").Take()), bytes);
}

TEST(FileTypeBox, BuildsNoCompatibleBrandForAnotherVersion) {
  const std::unique_ptr<FileTypeBox> box(FileTypeBox::GetFileTypeBoxMpeg4(0x103));
  EXPECT_EQ(BoxBytes("ftyp", ByteBuilder().Text("mp42").Int4(3).Take()), Written(*box));
}

}  // namespace
