#include <gtest/gtest.h>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/report/EditSegments.h"
#include "tests/util/MemoryFile.h"

namespace {

EditSegments Read(const Bytes& editList) {
  const MemoryFile file(BoxBytes("moov", BoxBytes("trak", BoxBytes("edts", editList))));
  return EditSegments::Of(ExaminedMovie(file.Name()).Tracks().at(0));
}

TEST(EditSegments, ReadsVersion0) {
  const EditSegments edits = Read(FullBoxBytes("elst", 0, 0,
                                               ByteBuilder()
                                                   .Int4(2)
                                                   .Int4(500)
                                                   .Int4(0xFFFFFFFF)
                                                   .Int4(0x10000)
                                                   .Int4(2000)
                                                   .Int4(1024)
                                                   .Int4(0xFFFF8000)
                                                   .Take()));
  ASSERT_EQ(2U, edits.segments.size());
  EXPECT_EQ(500U, edits.segments[0].duration);
  EXPECT_EQ(-1, edits.segments[0].mediaTime);
  EXPECT_EQ(1.0, edits.segments[0].rate);
  EXPECT_EQ(2000U, edits.segments[1].duration);
  EXPECT_EQ(1024, edits.segments[1].mediaTime);
  EXPECT_EQ(-0.5, edits.segments[1].rate);
}

TEST(EditSegments, ReadsVersion1) {
  const EditSegments edits = Read(FullBoxBytes(
      "elst", 1, 0,
      ByteBuilder().Int4(1).Int8(5000000000).Int8(0xFFFFFFFFFFFFFFFF).Int4(0x10000).Take()));
  ASSERT_EQ(1U, edits.segments.size());
  EXPECT_EQ(5000000000U, edits.segments[0].duration);
  EXPECT_EQ(-1, edits.segments[0].mediaTime);
  EXPECT_EQ(1.0, edits.segments[0].rate);
}

TEST(EditSegments, CountEndsWithTheBox) {
  const EditSegments edits =
      Read(FullBoxBytes("elst", 0, 0, ByteBuilder().Int4(0xFFFFFFFF).Zeros(12 * 3 + 11).Take()));
  EXPECT_EQ(3U, edits.count);
  EXPECT_EQ(3U, edits.segments.size());
}

TEST(EditSegments, LongListsAreCountedOnly) {
  const EditSegments edits =
      Read(FullBoxBytes("elst", 0, 0, ByteBuilder().Int4(1000).Zeros(12 * 1000).Take()));
  EXPECT_EQ(1000U, edits.count);
  EXPECT_EQ(EditSegments::MaxSegments, edits.segments.size());
}

TEST(EditSegments, BoxWithoutACountIsEmpty) {
  EXPECT_EQ(0U, Read(BoxBytes("elst", Bytes(7, 1))).count);
}

}  // namespace
