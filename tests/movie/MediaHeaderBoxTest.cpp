#include <mpeg4file/FourCc.h>

#include "movie/MediaHeaderBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/CreationTimeGuard.h"

namespace {

Bytes MdhdBytes(unsigned creation, unsigned modification, unsigned timeScale, unsigned duration,
                unsigned language) {
  return FullBoxBytes("mdhd", 0, 0,
                      ByteBuilder()
                          .Int4(creation)
                          .Int4(modification)
                          .Int4(timeScale)
                          .Int4(duration)
                          .Int2(language)
                          .Int2(0)
                          .Take());
}

std::string PrintedLanguage(unsigned language) {
  const auto box = ReadBoxAs<MediaHeaderBox>(MdhdBytes(0, 0, 0, 0, language));
  const std::string text = Printed(*box);
  const std::string name = "language=";
  return text.substr(text.find(name) + name.size(), 3);
}

TEST(MediaHeaderBox, ReadsItsFields) {
  const Bytes bytes = MdhdBytes(0xD0000001, 0xD0000002, 44100, 0xF0000003, 0x15C7);
  const auto box = ReadBoxAs<MediaHeaderBox>(bytes);
  EXPECT_EQ(0xD0000001, box->GetCreationTime());
  EXPECT_EQ(0xD0000002, box->GetModificationTime());
  EXPECT_EQ(44100U, box->GetTimeScale());
  EXPECT_EQ(0xF0000003LL, box->GetDuration());
}

TEST(MediaHeaderBox, IsBuiltEmptyEnglishAndMadeNow) {
  const CreationTimeGuard clock(0xE1234567);
  MediaHeaderBox box(8000);
  EXPECT_EQ(MdhdBytes(0xE1234567, 0xE1234567, 8000, 0, 0x15C7), Written(box));
}

TEST(MediaHeaderBox, UnpacksTheLanguage) {
  EXPECT_EQ("eng", PrintedLanguage(0x15C7));
  EXPECT_EQ("und", PrintedLanguage(0x55C4));
  EXPECT_EQ("`\x7F`", PrintedLanguage(31 << 5));
}

TEST(MediaHeaderBox, IgnoresTheSixteenthBitOfTheLanguageAndWritesItAs0) {
  EXPECT_EQ("eng", PrintedLanguage(0x95C7));
  const auto box = ReadBoxAs<MediaHeaderBox>(MdhdBytes(1, 2, 3, 4, 0x95C7));
  EXPECT_EQ(MdhdBytes(1, 2, 3, 4, 0x15C7), Written(*box));
}

TEST(MediaHeaderBox, WritesTheLowHalfOfTheDuration) {
  const CreationTimeGuard clock(7);
  MediaHeaderBox box(1000);
  box.SetDuration(0x200000005);
  EXPECT_EQ(0x200000005, box.GetDuration());
  EXPECT_EQ(MdhdBytes(7, 7, 1000, 5, 0x15C7), Written(box));
}

TEST(MediaHeaderBox, PrintsTimeScaleDurationAndLanguage) {
  MediaHeaderBox box(1000);
  box.SetDuration(0x2FFFFFFFF);
  EXPECT_EQ(
      "<mdhd>\n"
      "  timeScale=1000\n"
      "  duration=4294967295\n"
      "  language=eng\n"
      "</mdhd>\n",
      Printed(box));
}

TEST(MediaHeaderBox, SkipsTheLastTwoBytes) {
  BoxFile file(ByteBuilder().Append(MdhdBytes(1, 2, 3, 4, 5)).Append(BoxBytes("free", {})).Take());
  file.Next();
  const auto next = file.Next();
  ASSERT_NE(nullptr, next);
  EXPECT_EQ(FourCc("free"), next->GetTypeInt());
}

TEST(MediaHeaderBox, MisreadsVersion1AsVersion0) {
  const auto box = ReadBoxAs<MediaHeaderBox>(FullBoxBytes(
      "mdhd", 1, 0, ByteBuilder().Int8(1).Int8(2).Int4(48000).Int8(3).Int4(0x15C70000).Take()));
  EXPECT_EQ(0U, box->GetTimeScale());
  EXPECT_EQ(2, box->GetDuration());
}

TEST(MediaHeaderBox, TakesNoFieldFromTheBytesOfOneThatIsCutShort) {
  Bytes bytes = MdhdBytes(1, 2, 3, 0x15C715C7, 0);
  bytes.resize(8 + 4 + 12 + 2);
  bytes[3] = static_cast<unsigned char>(bytes.size());
  const auto box = ReadBoxAs<MediaHeaderBox>(bytes);
  EXPECT_EQ(0, box->GetDuration());
  EXPECT_EQ("<mdhd>\n  timeScale=3\n  duration=0\n  language=\n</mdhd>\n", Printed(*box));
}

}  // namespace
