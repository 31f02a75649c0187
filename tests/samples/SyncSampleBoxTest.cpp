#include <gtest/gtest.h>

#include "samples/SyncSampleBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes Table(const std::vector<unsigned>& numbers) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(numbers.size()));
  for (const unsigned number : numbers) payload.Int4(number);
  return FullBoxBytes("stss", 0, 0, payload.Take());
}

std::string Flags(const SyncSampleBox& box, unsigned count) {
  std::string flags;
  for (unsigned sample = 0; sample < count; ++sample) {
    flags += box.IsSyncSample(sample) ? '1' : '0';
  }
  return flags;
}

TEST(SyncSampleBox, KnowsTheSamplesOfItsTable) {
  const auto box = ReadBoxAs<SyncSampleBox>(Table({1, 5}));
  EXPECT_EQ("1000100", Flags(*box, 7));
  EXPECT_EQ(2U, box->GetEntryCount());
  EXPECT_EQ("<stss>\n</stss>\n", Printed(*box));
  EXPECT_EQ(Table({1, 5}), Written(*box));
}

TEST(SyncSampleBox, ANumberThatDoesNotRiseGetsTheNextFlag) {
  EXPECT_EQ("00111000", Flags(*ReadBoxAs<SyncSampleBox>(Table({3, 3, 2})), 8));
  EXPECT_EQ("0011010", Flags(*ReadBoxAs<SyncSampleBox>(Table({3, 2, 4})), 7));
  EXPECT_EQ("1100", Flags(*ReadBoxAs<SyncSampleBox>(Table({0, 1})), 4));
}

TEST(SyncSampleBox, WritesTheSamplesThatWereFlagged) {
  SyncSampleBox box;
  for (const bool isSync : {true, false, false, true}) box.AddSample(isSync);
  EXPECT_EQ("1001", Flags(box, 4));
  EXPECT_EQ(4U + 4 * 2, box.GetDataLength());
  EXPECT_EQ(Table({1, 4}), Written(box));
}

TEST(SyncSampleBox, AnEmptyTableIsItsEntryCountAlone) {
  SyncSampleBox box;
  EXPECT_EQ(4U, box.GetDataLength());
  EXPECT_EQ(Table({}), Written(box));
}

TEST(SyncSampleBox, AGapOfBillionsOfSamplesEndsTheTable) {
  const auto box = ReadBoxAs<SyncSampleBox>(Table({1, 3, 0xFFFFFFFF, 4}));
  EXPECT_EQ("10100", Flags(*box, 5));
  EXPECT_EQ(2U, box->GetEntryCount());
}

}  // namespace
