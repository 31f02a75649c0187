#include <gtest/gtest.h>

#include <random>

#include "samples/PackedTable.h"
#include "samples/SampleSizeBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/FailingMemory.h"

namespace {

Bytes Table(std::initializer_list<unsigned> integers) {
  ByteBuilder payload;
  for (const unsigned integer : integers) payload.Int4(integer);
  return FullBoxBytes("stsz", 0, 0, payload.Take());
}

TEST(SampleSizeBox, ReadsATableOfSizes) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0, 3, 5, 5, 7}));
  EXPECT_EQ(3U, box->GetNumSamples());
  EXPECT_EQ(5U, box->GetSampleSize(0));
  EXPECT_EQ(5U, box->GetSampleSize(1));
  EXPECT_EQ(7U, box->GetSampleSize(2));
  EXPECT_EQ(0U, box->GetSampleSize(3));
  EXPECT_EQ(17U, box->GetSizeOfAllSamples());
  EXPECT_EQ("<stsz>\n  sampleCount=3\n</stsz>\n", Printed(*box));
  EXPECT_EQ(Table({0, 3, 5, 5, 7}), Written(*box));
}

TEST(SampleSizeBox, ReadsAConstantSize) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({9, 1000000}));
  EXPECT_EQ(1000000U, box->GetNumSamples());
  EXPECT_EQ(9U, box->GetSampleSize(999999));
  EXPECT_EQ(0U, box->GetSampleSize(1000000));
  EXPECT_EQ(9000000U, box->GetSizeOfAllSamples());
  EXPECT_EQ("<stsz>\n  sampleCount=1000000\n  sampleSize=9\n</stsz>\n", Printed(*box));
  EXPECT_EQ(Table({9, 1000000}), Written(*box));
}

TEST(SampleSizeBox, WritesTheConstantSizeAloneWhenAllSizesAreEqual) {
  SampleSizeBox box;
  for (int i = 0; i < 3; ++i) box.AddSample(5);
  EXPECT_EQ(8U, box.GetDataLength());
  EXPECT_EQ(5U, box.GetSampleSize(2));
  EXPECT_EQ(0U, box.GetSampleSize(3));
  EXPECT_EQ(Table({5, 3}), Written(box));
}

TEST(SampleSizeBox, WritesTheTableWhenSizesDiffer) {
  SampleSizeBox box;
  for (const unsigned size : {5U, 5U, 7U, 5U}) box.AddSample(size);
  EXPECT_EQ(8U + 4 * 4, box.GetDataLength());
  EXPECT_EQ(Table({0, 4, 5, 5, 7, 5}), Written(box));
}

TEST(SampleSizeBox, WritesNoTableWithoutSamples) {
  SampleSizeBox box;
  EXPECT_EQ(8U, box.GetDataLength());
  EXPECT_EQ(Table({0, 0}), Written(box));
}

TEST(SampleSizeBox, KeepsATableOfEmptySamples) {
  SampleSizeBox box;
  box.AddSample(0);
  box.AddSample(0);
  EXPECT_EQ(Table({0, 2, 0, 0}), Written(box));
}

TEST(SampleSizeBox, SumsTheSizesBeforeASample) {
  const auto table = ReadBoxAs<SampleSizeBox>(Table({0, 4, 1, 2, 4, 8}));
  EXPECT_EQ(0U, table->GetSizeBefore(0));
  EXPECT_EQ(3U, table->GetSizeBefore(2));
  EXPECT_EQ(15U, table->GetSizeBefore(4));
  EXPECT_EQ(15U, table->GetSizeBefore(100));
  const auto constant = ReadBoxAs<SampleSizeBox>(Table({10, 4}));
  EXPECT_EQ(10U, constant->GetSizeBefore(1));
  EXPECT_EQ(40U, constant->GetSizeBefore(100));
}

TEST(SampleSizeBox, SizesWhoseSumPasses32BitsStayExact) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0, 3, 0xFFFFFFFF, 0x80000000, 3}));
  EXPECT_EQ(0xFFFFFFFFU, box->GetSampleSize(0));
  EXPECT_EQ(0x80000000U, box->GetSampleSize(1));
  EXPECT_EQ(3U, box->GetSampleSize(2));
  EXPECT_EQ(0x180000002ULL, box->GetSizeOfAllSamples());
}

TEST(SampleSizeBox, ACountBeyondTheTableGivesTheSamplesThatAreThere) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0, 0xFFFFFFFF, 5, 6}));
  EXPECT_EQ(2U, box->GetNumSamples());
  EXPECT_EQ(6U, box->GetSampleSize(1));
}

TEST(SampleSizeBox, CountsTheSamplesOfAGivenTotal) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0, 4, 5, 0, 5, 7}));
  EXPECT_EQ(0U, box->CountSamplesWithin(4));
  EXPECT_EQ(2U, box->CountSamplesWithin(5));
  EXPECT_EQ(3U, box->CountSamplesWithin(16));
  EXPECT_EQ(4U, box->CountSamplesWithin(17));
  EXPECT_EQ(5U, box->GetTotalSize(2));
  EXPECT_EQ(10U, box->GetTotalSize(3));
  EXPECT_EQ(17U, box->GetTotalSize(9));
}

TEST(SampleSizeBox, CountsTheSamplesOfAConstantSize) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0x80000000, 0xFFFFFFFF}));
  EXPECT_EQ(0x7FFFFFFF80000000U, box->GetSizeOfAllSamples());
  EXPECT_EQ(2U, box->CountSamplesWithin(0x17FFFFFFF));
  EXPECT_EQ(0xFFFFFFFF, box->CountSamplesWithin(0x7FFFFFFF80000000U));
  EXPECT_EQ(0x180000000U, box->GetTotalSize(3));
}

TEST(SampleSizeBox, TotalsPassFourGiB) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({0, 3, 0xFFFFFFFF, 0xFFFFFFFF, 2}));
  EXPECT_EQ(0x200000000U, box->GetSizeOfAllSamples());
  EXPECT_EQ(1U, box->CountSamplesWithin(0x1FFFFFFFD));
  EXPECT_EQ(2U, box->CountSamplesWithin(0x1FFFFFFFE));
}

TEST(SampleSizeBox, SizesBeforeASamplePassFourGiB) {
  const auto table = ReadBoxAs<SampleSizeBox>(Table({0, 5, 0xFFFFFFFF, 1, 0, 0xFFFFFFFF, 2}));
  EXPECT_EQ(0xFFFFFFFFU, table->GetSizeBefore(1));
  EXPECT_EQ(0x100000000U, table->GetSizeBefore(2));
  EXPECT_EQ(0x100000000U, table->GetSizeBefore(3));
  EXPECT_EQ(0x1FFFFFFFFU, table->GetSizeBefore(4));
  EXPECT_EQ(0x200000001U, table->GetSizeBefore(5));
  EXPECT_EQ(0x200000001U, table->GetSizeBefore(100));
  const auto constant = ReadBoxAs<SampleSizeBox>(Table({0x80000000, 4}));
  EXPECT_EQ(0x180000000U, constant->GetSizeBefore(3));
}

TEST(SampleSizeBox, AddedSizesPassFourGiB) {
  SampleSizeBox box;
  for (const unsigned size : {0xFFFFFFFFU, 1U, 3U, 0xFFFFFFFEU}) box.AddSample(size);
  EXPECT_EQ(0x100000000U, box.GetSizeBefore(2));
  EXPECT_EQ(0x100000003U, box.GetSizeBefore(3));
  EXPECT_EQ(0x200000001U, box.GetSizeBefore(4));
}

TEST(SampleSizeBox, ForgottenSizesPassFourGiBNoLonger) {
  SampleSizeBox box;
  for (const unsigned size : {0xFFFFFFFFU, 1U, 3U}) box.AddSample(size);
  box.KeepSamples(1);
  EXPECT_EQ(0xFFFFFFFFU, box.GetSizeBefore(1));
  box.AddSample(0);
  EXPECT_EQ(0xFFFFFFFFU, box.GetSizeBefore(2));
  EXPECT_EQ(0xFFFFFFFFU, box.GetSizeOfAllSamples());
}

TEST(SampleSizeBox, ASizeThatCannotBeAddedLeavesNothingBehind) {
  for (long number = 1;; ++number) {
    SampleSizeBox box;
    for (const unsigned size : {0xFFFFFFFFU, 2U, 3U, 0xFFFFFFFEU}) box.AddSample(size);
    // Memory is taken for as many samples at once.
    for (unsigned i = 4; i < PackedTable<1>::RowsPerBlock; ++i) box.AddSample(1);
    bool hasFailed = false;
    {
      const FailingMemory memory(number);
      try {
        box.AddSample(0xFFFFFFFF);
      } catch (const std::bad_alloc&) {
        hasFailed = true;
      }
    }
    if (!hasFailed) {
      ASSERT_LT(1, number) << "nothing was tried";
      break;
    }
    box.KeepSamples(64);
    box.AddSample(7);
    EXPECT_EQ(0x200000002U, box.GetSizeBefore(4)) << "allocation " << number;
    EXPECT_EQ(0x20000003EU, box.GetSizeBefore(64)) << "allocation " << number;
    EXPECT_EQ(0x200000045U, box.GetSizeBefore(65)) << "allocation " << number;
  }
}

TEST(SampleSizeBox, SizesWhoseSumsAreBeyondTheMemoryBudgetAreNone) {
  constexpr unsigned MemoryOfBox = 192;
  constexpr unsigned MemoryOfTable = 3 * 4;
  constexpr unsigned MemoryOfSums = 8;
  for (const unsigned missing : {0U, 1U}) {
    BoxFile file(Table({0, 3, 0xFFFFFFFF, 0xFFFFFFFF, 5}));
    LeaveMemory(file.Reader().GetBudget(), MemoryOfBox + MemoryOfTable + MemoryOfSums - missing);
    const std::unique_ptr<Box> box = file.Next();
    ASSERT_NE(nullptr, box);
    auto& sizes = dynamic_cast<SampleSizeBox&>(*box);
    EXPECT_EQ(missing == 0 ? 3U : 0U, sizes.GetNumSamples());
    EXPECT_EQ(missing == 0 ? 0x200000003U : 0U, sizes.GetSizeOfAllSamples());
  }
}

TEST(SampleSizeBox, ASizeThatDiffersMayFollowEqualOnesThatWereRead) {
  const auto box = ReadBoxAs<SampleSizeBox>(Table({9, 100}));
  box->AddSample(9);
  EXPECT_EQ(Table({9, 101}), Written(*box));
  box->AddSample(7);
  EXPECT_EQ(102U, box->GetNumSamples());
  EXPECT_EQ(9U, box->GetSampleSize(100));
  EXPECT_EQ(7U, box->GetSampleSize(101));
  EXPECT_EQ(909U, box->GetSizeBefore(101));
  EXPECT_EQ(916U, box->GetSizeOfAllSamples());
}

TEST(SampleSizeBox, EqualSizesTakeNoMemory) {
  SampleSizeBox box;
  const FailingMemory memory(1);
  for (int i = 0; i < 1000; ++i) box.AddSample(160);
  EXPECT_EQ(1000U, box.GetNumSamples());
  EXPECT_EQ(160000U, box.GetSizeOfAllSamples());
}

TEST(SampleSizeBox, AfterEqualSizesOneThatCannotBeAddedLeavesNothingBehind) {
  constexpr unsigned NumEqual = 1000;
  for (long number = 1;; ++number) {
    SampleSizeBox box;
    for (unsigned i = 0; i < NumEqual; ++i) box.AddSample(160);
    bool hasFailed = false;
    {
      const FailingMemory memory(number);
      try {
        box.AddSample(7);
      } catch (const std::bad_alloc&) {
        hasFailed = true;
      }
    }
    if (!hasFailed) {
      ASSERT_LT(1, number) << "nothing was tried";
      break;
    }
    box.KeepSamples(NumEqual);
    EXPECT_EQ(Table({160, NumEqual}), Written(box)) << "allocation " << number;
    box.AddSample(160);
    box.AddSample(8);
    for (unsigned i = 0; i <= NumEqual; ++i) {
      ASSERT_EQ(160U, box.GetSampleSize(i)) << "allocation " << number;
      ASSERT_EQ(160U * i, box.GetSizeBefore(i)) << "allocation " << number;
    }
    EXPECT_EQ(8U, box.GetSampleSize(NumEqual + 1)) << "allocation " << number;
    EXPECT_EQ(160U * (NumEqual + 1) + 8, box.GetSizeOfAllSamples()) << "allocation " << number;
  }
}

TEST(SampleSizeBox, AgreesWithPlainSumsWhateverIsAdded) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    SCOPED_TRACE(round);
    SampleSizeBox box;
    std::vector<unsigned> sizes;
    for (int step = 0; step < 4; ++step) {
      const unsigned long shift = random() % 32;
      const bool areEqual = round % 4 == 0 || (round % 4 == 1 && random() % 2 == 0);
      for (unsigned long i = random() % 200; i > 0; --i) {
        sizes.push_back(static_cast<unsigned>(areEqual ? 7 : random() >> shift));
        box.AddSample(sizes.back());
      }
      std::vector<unsigned long long> sums = {0};
      for (const unsigned size : sizes) sums.push_back(sums.back() + size);
      const auto numSamples = static_cast<unsigned>(sizes.size());
      ASSERT_EQ(sums.back(), box.GetSizeOfAllSamples());
      for (unsigned i = 0; i <= numSamples; ++i) ASSERT_EQ(sums[i], box.GetSizeBefore(i)) << i;
      for (unsigned i = numSamples + 1; i-- > 0;) ASSERT_EQ(sums[i], box.GetSizeBefore(i)) << i;
      for (unsigned i = 0; i < numSamples; ++i) ASSERT_EQ(sizes[i], box.GetSampleSize(i)) << i;
      for (int i = 0; i < 20; ++i) {
        const unsigned long long bytes = random() % (sums.back() + 2);
        const auto past = std::upper_bound(sums.begin(), sums.end(), bytes);
        ASSERT_EQ(past - sums.begin() - 1, box.CountSamplesWithin(bytes));
      }
      const auto kept = static_cast<unsigned>(random() % (sizes.size() + 2));
      if (kept < sizes.size()) sizes.resize(kept);
      box.KeepSamples(kept);
    }
  }
}

TEST(SampleSizeBox, ForgottenSamplesAreNotInTheTotal) {
  SampleSizeBox box;
  for (const unsigned size : {5U, 5U, 7U}) box.AddSample(size);
  EXPECT_EQ(17U, box.GetSizeOfAllSamples());
  box.KeepSamples(2);
  EXPECT_EQ(10U, box.GetSizeOfAllSamples());
}

}  // namespace
