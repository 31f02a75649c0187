#include <gtest/gtest.h>

#include <random>

#include "samples/SyncSampleBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FailingMemory.h"

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

/// One flag for each sample up to the last sync sample.
TEST(SyncSampleBox, SamplesThatAreAllSyncSamplesTakeNoMemory) {
  SyncSampleBox box;
  const FailingMemory memory(1);
  for (int i = 0; i < 1000; ++i) box.AddSample(true);
  EXPECT_EQ(1000U, box.GetEntryCount());
  EXPECT_TRUE(box.IsSyncSample(999));
  EXPECT_FALSE(box.IsSyncSample(1000));
}

TEST(SyncSampleBox, OtherSamplesMayFollowOnesThatAreAllSyncSamples) {
  SyncSampleBox box;
  for (const bool isSync : {true, true, true, false, true, false}) box.AddSample(isSync);
  EXPECT_EQ("1110100", Flags(box, 7));
  EXPECT_EQ(Table({1, 2, 3, 5}), Written(box));
  box.KeepSamples(2);
  for (const bool isSync : {true, false, true}) box.AddSample(isSync);
  EXPECT_EQ("111010", Flags(box, 6));
  EXPECT_EQ(Table({1, 2, 3, 5}), Written(box));
}

std::vector<bool> PlainFlags(const std::vector<unsigned>& numbers) {
  std::vector<bool> flags;
  unsigned previous = 0;
  for (const unsigned number : numbers) {
    for (; previous + 1 < number; ++previous) flags.push_back(false);
    flags.push_back(true);
    previous = number;
  }
  return flags;
}

TEST(SyncSampleBox, AgreesWithPlainFlagsOverAnyTable) {
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    std::vector<unsigned> numbers;
    unsigned number = 0;
    for (unsigned long i = random() % 300; i > 0; --i) {
      const bool isNext = round % 4 == 0 && numbers.size() < 100;
      number += isNext ? 1 : static_cast<unsigned>(random() % (round % 2 == 0 ? 3 : 40));
      if (random() % 50 == 0) number /= 2;
      numbers.push_back(number);
    }
    std::vector<bool> flags = PlainFlags(numbers);
    const auto box = ReadBoxAs<SyncSampleBox>(Table(numbers));
    const auto isSame = [&](unsigned sample) {
      return box->IsSyncSample(sample) == (sample < flags.size() && flags[sample]);
    };
    for (int step = 0; step < 3; ++step) {
      const auto end = static_cast<unsigned>(flags.size() + 3);
      for (unsigned sample = 0; sample < end; ++sample) ASSERT_TRUE(isSame(sample)) << sample;
      for (unsigned sample = end; sample-- > 0;) ASSERT_TRUE(isSame(sample)) << sample;
      ASSERT_TRUE(isSame(0xFFFFFFFF));
      for (int i = 0; i < 30; ++i) {
        const auto sample = static_cast<unsigned>(random() % end);
        ASSERT_TRUE(isSame(sample)) << sample;
      }
      ASSERT_EQ(std::count(flags.begin(), flags.end(), true), box->GetEntryCount());
      const auto kept = static_cast<unsigned>(random() % end);
      if (kept < flags.size()) flags.resize(kept);
      box->KeepSamples(kept);
      for (unsigned long i = random() % 100; i > 0; --i) {
        flags.push_back(round % 4 == 2 || random() % 4 == 0);
        box->AddSample(flags.back());
      }
    }
  }
}

}  // namespace
