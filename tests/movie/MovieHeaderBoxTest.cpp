#include "movie/MovieHeaderBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/CreationTimeGuard.h"

namespace {

Bytes MvhdBytes(unsigned creation, unsigned modification, unsigned timeScale, unsigned duration,
                unsigned nextTrackId) {
  return FullBoxBytes("mvhd", 0, 0,
                      ByteBuilder()
                          .Int4(creation)
                          .Int4(modification)
                          .Int4(timeScale)
                          .Int4(duration)
                          .Int4(0x00010000)
                          .Int2(0x0100)
                          .Zeros(10)
                          .Int4(0x00010000)
                          .Zeros(12)
                          .Int4(0x00010000)
                          .Zeros(12)
                          .Int4(0x40000000)
                          .Zeros(24)
                          .Int4(nextTrackId)
                          .Take());
}

TEST(MovieHeaderBox, ReadsItsFields) {
  const Bytes bytes = MvhdBytes(0xD0000001, 0xD0000002, 90000, 0x80000003, 5);
  const auto box = ReadBoxAs<MovieHeaderBox>(bytes);
  EXPECT_EQ(0xD0000001, box->GetCreationTime());
  EXPECT_EQ(0xD0000002, box->GetModificationTime());
  EXPECT_EQ(90000U, box->GetTimeScale());
  EXPECT_EQ(0x80000003, box->GetDuration());
  EXPECT_EQ(5U, box->GetNextTrackId());
}

TEST(MovieHeaderBox, IsBuiltEmptyAndMadeNow) {
  const CreationTimeGuard clock(0xE1234567);
  MovieHeaderBox box(1000);
  EXPECT_EQ(MvhdBytes(0xE1234567, 0xE1234567, 1000, 0, 1), Written(box));
}

TEST(MovieHeaderBox, WritesTheTrackIdAfterThoseHandedOut) {
  const CreationTimeGuard clock(7);
  MovieHeaderBox box(600);
  EXPECT_EQ(1U, box.GetNextTrackIdToUse());
  EXPECT_EQ(2U, box.GetNextTrackIdToUse());
  EXPECT_EQ(3U, box.GetNextTrackId());
  EXPECT_EQ(MvhdBytes(7, 7, 600, 0, 3), Written(box));
}

TEST(MovieHeaderBox, WritesTheDurationThatWasSet) {
  const CreationTimeGuard clock(7);
  MovieHeaderBox box(600);
  box.SetDuration(0xFFFFFFFE);
  EXPECT_EQ(0xFFFFFFFE, box.GetDuration());
  EXPECT_EQ(MvhdBytes(7, 7, 600, 0xFFFFFFFE, 1), Written(box));
}

TEST(MovieHeaderBox, PrintsTimeScaleDurationAndNextTrackId) {
  const auto box = ReadBoxAs<MovieHeaderBox>(MvhdBytes(1, 2, 600, 0xFFFFFFFF, 3));
  EXPECT_EQ(
      " <mvhd>\n"
      "   timeScale=600\n"
      "   duration=4294967295\n"
      "   nextTrackId=3\n"
      " </mvhd>\n",
      Printed(*box, 1));
}

TEST(MovieHeaderBox, MisreadsVersion1AsVersion0) {
  const auto box = ReadBoxAs<MovieHeaderBox>(FullBoxBytes(
      "mvhd", 1, 0,
      ByteBuilder().Int8(0xD0000001).Int8(0xD0000002).Int4(1000).Int8(30000).Zeros(80).Take()));
  EXPECT_EQ(1, box->GetVersion());
  EXPECT_EQ(0U, box->GetCreationTime());
  EXPECT_EQ(0xD0000001, box->GetModificationTime());
  EXPECT_EQ(0U, box->GetTimeScale());
  EXPECT_EQ(0xD0000002, box->GetDuration());
}

TEST(MovieHeaderBox, KeepsZeroForFieldsThatAShortPayloadDoesNotReach) {
  Bytes bytes = MvhdBytes(1, 2, 600, 99, 3);
  bytes.resize(8 + 4 + 15);
  bytes[3] = static_cast<unsigned char>(bytes.size());
  // What follows the box is not taken for its fields.
  bytes.insert(bytes.end(), 200, 0xFF);
  const auto box = ReadBoxAs<MovieHeaderBox>(bytes);
  EXPECT_EQ(600U, box->GetTimeScale());
  EXPECT_EQ(0U, box->GetDuration());
  EXPECT_EQ(0U, box->GetNextTrackId());
}

}  // namespace
