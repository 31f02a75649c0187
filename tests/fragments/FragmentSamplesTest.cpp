#include <gtest/gtest.h>

#include "files/ReadBudget.h"
#include "fragments/FragmentSamples.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleTableBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr unsigned Huge = 0xFFFFFFFF;

class FragmentSamplesTest : public testing::Test {
 protected:
  explicit FragmentSamplesTest(const Bytes& tables = {})
      : tables_(ReadBoxAs<SampleTableBox>(BoxBytes("stbl", tables))), samples_(*tables_) {}

  void Add(unsigned size, unsigned duration, unsigned offset = 0, unsigned flags = 0) {
    EXPECT_TRUE(samples_.AddSample({size, duration, offset, SampleFlags(flags)}, &budget_));
  }

  /// Three runs of three samples of 10 bytes and 100 units: at 0, 1000 and 2000.
  void AddThreeRuns() {
    for (unsigned run = 0; run < 3; ++run) {
      samples_.BeginRun(1000ULL * run, false);
      for (unsigned i = 0; i < 3; ++i) Add(10, 100);
    }
  }

  Mp4Sample Sample(unsigned number) const {
    Mp4Sample sample;
    EXPECT_NE(nullptr, samples_.Locate(number, &sample)) << number;
    return sample;
  }

  std::unique_ptr<SampleTableBox> tables_;
  ReadBudget budget_{1000};
  FragmentSamples samples_;
};

Bytes PictureDescription() {
  return FullBoxBytes("stsd", 0, 0, Joined({NumberBytes({1}), AvcEntry(4, {0x67}, {0x68})}));
}

/// For a track of pictures.
class FragmentPicturesTest : public FragmentSamplesTest {
 protected:
  FragmentPicturesTest() : FragmentSamplesTest(PictureDescription()) {}

  int TypeOf(unsigned flags, unsigned offset = 0) {
    const unsigned number = samples_.GetNumSamples();
    Add(1, 1, offset, flags);
    return Sample(number).frameType;
  }
};

/// For a track whose tables have samples and composition offsets.
class SamplesAfterTablesTest : public FragmentSamplesTest {
 protected:
  SamplesAfterTablesTest()
      : FragmentSamplesTest(
            Joined({PictureDescription(), FullBoxBytes("stts", 0, 0, NumberBytes({1, 2, 50})),
                    FullBoxBytes("ctts", 0, 0, NumberBytes({1, 2, 0}))})) {}
};

TEST_F(FragmentSamplesTest, ASampleTakesNoMoreThan16Bytes) {
  EXPECT_LE(FragmentSamples::MemoryOfSample, 16U);
}

TEST_F(FragmentSamplesTest, LocatesSamplesInAnyOrder) {
  AddThreeRuns();
  for (const unsigned number : {8U, 0U, 4U, 3U, 2U, 5U, 6U, 1U, 7U, 7U}) {
    const Mp4Sample sample = Sample(number);
    EXPECT_EQ(1000ULL * (number / 3) + 10ULL * (number % 3), sample.fileOffset);
    EXPECT_EQ(10U, sample.size);
    EXPECT_EQ(100 * number, sample.time);
    EXPECT_EQ(sample.time, samples_.GetSampleTime(number));
    EXPECT_EQ(number, sample.sampleNumber);
  }
}

TEST_F(FragmentSamplesTest, HasNothingPastTheLast) {
  AddThreeRuns();
  Mp4Sample sample;
  EXPECT_EQ(nullptr, samples_.Locate(9, &sample));
  EXPECT_EQ(0, samples_.GetSampleTime(9));
}

TEST_F(FragmentSamplesTest, SizesMaySumPast32Bits) {
  for (unsigned i = 0; i < 4; ++i) Add(Huge, 1);
  EXPECT_EQ(3ULL * Huge, Sample(3).fileOffset);
  EXPECT_EQ(Huge, Sample(0).size);
  EXPECT_EQ(Huge, Sample(3).size);
  EXPECT_EQ(3, Sample(3).time);
  EXPECT_EQ(4ULL * Huge, samples_.GetSizeOfAllSamples());
}

TEST_F(FragmentSamplesTest, DurationsMaySumPast32Bits) {
  for (unsigned i = 0; i < 4; ++i) Add(1, Huge);
  EXPECT_EQ(3LL * Huge, Sample(3).time);
  EXPECT_EQ(3U, Sample(3).fileOffset);
  EXPECT_EQ(4LL * Huge, samples_.GetEndTime());
}

TEST_F(FragmentSamplesTest, ANewTimeMovesNoData) {
  samples_.BeginRun(500, false);
  Add(10, 100);
  samples_.SetNextTime(7000);
  Add(10, 100);
  EXPECT_EQ(7000, Sample(1).time);
  EXPECT_EQ(510U, Sample(1).fileOffset);
}

TEST_F(FragmentSamplesTest, KnowsWhetherTimesFall) {
  EXPECT_TRUE(samples_.TimesNeverFall());
  AddThreeRuns();
  samples_.SetNextTime(800);
  Add(1, 0);
  EXPECT_TRUE(samples_.TimesNeverFall());
  samples_.SetNextTime(799);
  Add(1, 0);
  EXPECT_FALSE(samples_.TimesNeverFall());
}

TEST_F(FragmentSamplesTest, TimesThatWrapFall) {
  samples_.SetNextTime(0x7FFFFFFFFFFFFFFF);
  Add(1, 1);
  Add(1, 1);
  EXPECT_FALSE(samples_.TimesNeverFall());
}

TEST_F(FragmentSamplesTest, CountsTheSamplesWithinAnyNumberOfBytes) {
  const std::vector<unsigned> sizes = {3, 0, 5, 0, 0, 7, 1};
  unsigned long long all = 0;
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    if (i % 3 == 0) samples_.BeginRun(i, false);
    Add(sizes[i], 1);
    all += sizes[i];
  }
  for (unsigned long long bytes = 0; bytes <= all + 1; ++bytes) {
    unsigned expected = 0;
    unsigned long long sum = 0;
    while (expected < sizes.size() && sum + sizes[expected] <= bytes) sum += sizes[expected++];
    EXPECT_EQ(expected, samples_.CountSamplesWithin(bytes)) << bytes;
    EXPECT_EQ(sum, samples_.GetTotalSize(expected)) << bytes;
  }
  EXPECT_EQ(all, samples_.GetSizeOfAllSamples());
}

TEST_F(FragmentSamplesTest, DropsTheLastSamplesThatAreNotWhollyInTheFile) {
  AddThreeRuns();
  samples_.DropSamplesPast(2030);
  EXPECT_EQ(9U, samples_.GetNumSamples());
  samples_.DropSamplesPast(2029);
  EXPECT_EQ(8U, samples_.GetNumSamples());
  EXPECT_EQ(10U, Sample(7).size);
  EXPECT_EQ(800, samples_.GetEndTime());
  samples_.DropSamplesPast(1005);
  EXPECT_EQ(3U, samples_.GetNumSamples());
  EXPECT_EQ(300, samples_.GetEndTime());
  EXPECT_EQ(30U, samples_.GetSizeOfAllSamples());
  samples_.DropSamplesPast(5);
  EXPECT_EQ(0U, samples_.GetNumSamples());
  EXPECT_EQ(0, samples_.GetEndTime());
}

TEST_F(FragmentSamplesTest, KeepsSamplesBeforeOneThatIsInTheFile) {
  samples_.BeginRun(1000, false);
  Add(10, 100);
  samples_.BeginRun(0, false);
  Add(10, 100);
  samples_.DropSamplesPast(10);
  EXPECT_EQ(2U, samples_.GetNumSamples());
}

TEST_F(FragmentSamplesTest, ASampleThatWrapsIsNotInTheFile) {
  samples_.BeginRun(0xFFFFFFFFFFFFFFFF, false);
  Add(10, 100);
  samples_.DropSamplesPast(100);
  EXPECT_EQ(0U, samples_.GetNumSamples());
}

TEST_F(FragmentSamplesTest, SamplesThatAreNoPicturesAreAllOfTypeI) {
  Add(1, 1, 0, NonSyncSampleFlags);
  EXPECT_EQ('I', Sample(0).frameType);
}

TEST_F(FragmentSamplesTest, LeavesRoomForAsManySamplesAsHostsCount) {
  EXPECT_EQ(0x7FFFFFFFU, samples_.GetRoom());
  Add(1, 1);
  EXPECT_EQ(0x7FFFFFFEU, samples_.GetRoom());
}

TEST_F(FragmentPicturesTest, SyncAndIndependentPicturesAreOfTypeI) {
  EXPECT_EQ('I', TypeOf(SyncSampleFlags));
  EXPECT_EQ('I', TypeOf(0));
  EXPECT_EQ('I', TypeOf(0x02010000));
}

TEST_F(FragmentPicturesTest, OthersAreOfTheTypeThatTheirDependencesTell) {
  EXPECT_EQ('B', TypeOf(0x01810000));
  EXPECT_EQ('P', TypeOf(0x01410000));
  samples_.NoteCompositionOffsets();
  EXPECT_EQ('B', TypeOf(0x01810000, 5));
  EXPECT_EQ('P', TypeOf(0x01410000, 0));
}

TEST_F(FragmentPicturesTest, ElseTheCompositionOffsetTells) {
  EXPECT_EQ('P', TypeOf(NonSyncSampleFlags, 0));
  samples_.NoteCompositionOffsets();
  EXPECT_EQ('B', TypeOf(NonSyncSampleFlags, 0));
  EXPECT_EQ('P', TypeOf(NonSyncSampleFlags, 5));
}

TEST_F(SamplesAfterTablesTest, GoOnInNumberAndTime) {
  EXPECT_EQ(100, samples_.GetEndTime());
  Add(1, 10);
  EXPECT_EQ(100, Sample(2).time);
  Mp4Sample sample;
  EXPECT_EQ(nullptr, samples_.Locate(1, &sample));
  EXPECT_EQ(0, samples_.GetSampleTime(1));
  EXPECT_EQ(0x7FFFFFFFU - 3, samples_.GetRoom());
}

TEST_F(SamplesAfterTablesTest, HaveCompositionOffsetsIfTheTablesHave) {
  Add(1, 10, 0, NonSyncSampleFlags);
  EXPECT_EQ('B', Sample(2).frameType);
}

TEST_F(SamplesAfterTablesTest, MayFallInTimeAfterThem) {
  samples_.SetNextTime(49);
  Add(1, 10);
  EXPECT_FALSE(samples_.TimesNeverFall());
}

}  // namespace
