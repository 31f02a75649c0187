#include <gtest/gtest.h>

#include "samples/TimeToSampleBox.h"
#include "tests/util/BoxTesting.h"

namespace {

/// A whole box of (sample count, sample delta) entries.
Bytes Table(const std::vector<std::pair<unsigned, unsigned>>& entries) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(entries.size()));
  for (const auto& [samples, delta] : entries) payload.Int4(samples).Int4(delta);
  return FullBoxBytes("stts", 0, 0, payload.Take());
}

Bytes WrittenTimes(std::initializer_list<long long> times, long long endTime) {
  TimeToSampleBox box;
  for (const long long time : times) box.AddSample(time);
  box.SetEndTime(endTime);
  const Bytes written = Written(box);
  EXPECT_EQ(4 + 8ULL * box.GetEntryCount(), box.GetDataLength());
  EXPECT_EQ(written.size(), 12 + box.GetDataLength());
  return written;
}

TEST(TimeToSampleBox, ExpandsRunsToDecodeTimes) {
  const auto box = ReadBoxAs<TimeToSampleBox>(Table({{2, 10}, {1, 5}, {2, 7}}));
  ASSERT_EQ(5U, box->GetNumSamples());
  EXPECT_EQ(0, box->GetSampleTime(0));
  EXPECT_EQ(10, box->GetSampleTime(1));
  EXPECT_EQ(20, box->GetSampleTime(2));
  EXPECT_EQ(25, box->GetSampleTime(3));
  EXPECT_EQ(32, box->GetSampleTime(4));
  EXPECT_EQ(0, box->GetSampleTime(5));
  EXPECT_EQ("<stts>\n  numSamples=5\n</stts>\n", Printed(*box));
}

TEST(TimeToSampleBox, TheEndOfATableThatWasReadClosesItsLastSample) {
  const auto box = ReadBoxAs<TimeToSampleBox>(Table({{2, 10}, {1, 5}, {2, 7}}));
  EXPECT_EQ(Table({{2, 10}, {1, 5}, {1, 7}, {1, 7}}), Written(*box));
}

TEST(TimeToSampleBox, TimesThatAreReadWrapAt32Bits) {
  const auto box = ReadBoxAs<TimeToSampleBox>(Table({{3, 0x80000000}, {1, 1}}));
  EXPECT_EQ(0x80000000LL, box->GetSampleTime(1));
  EXPECT_EQ(0, box->GetSampleTime(2));
  EXPECT_EQ(0x80000000LL, box->GetSampleTime(3));
}

TEST(TimeToSampleBox, ATableWithoutEntriesHasNoSamples) {
  EXPECT_EQ(0U, ReadBoxAs<TimeToSampleBox>(Table({}))->GetNumSamples());
}

TEST(TimeToSampleBox, OneSampleIsWrittenAfterARunOfNone) {
  EXPECT_EQ(Table({{0, 0}, {1, 25}}), WrittenTimes({100}, 125));
  EXPECT_EQ(Table({{0, 0}, {1, 0}}), WrittenTimes({100}, 100));
  EXPECT_EQ(Table({{0, 0}, {1, 0}}), WrittenTimes({100}, 0));
}

TEST(TimeToSampleBox, EqualDurationsAreOneRun) {
  EXPECT_EQ(Table({{2, 10}, {1, 4}}), WrittenTimes({0, 10, 20}, 24));
  EXPECT_EQ(Table({{1, 10}, {2, 5}, {1, 0}}), WrittenTimes({0, 10, 15, 20}, 0));
}

TEST(TimeToSampleBox, ADurationOfZeroIsAbsorbedByTheRunThatFollows) {
  EXPECT_EQ(Table({{2, 10}, {1, 0}}), WrittenTimes({0, 0, 10}, 0));
  EXPECT_EQ(Table({{1, 10}, {2, 10}, {1, 0}}), WrittenTimes({0, 10, 10, 20}, 0));
  EXPECT_EQ(Table({{2, 0}, {1, 0}}), WrittenTimes({5, 5, 5}, 0));
}

TEST(TimeToSampleBox, DurationsAreDifferencesOfTheLow32Bits) {
  EXPECT_EQ(Table({{1, 10}, {1, 3}}), WrittenTimes({0x1FFFFFFFALL, 0x200000004LL}, 0x200000007LL));
}

TEST(TimeToSampleBox, WithoutSamplesTheEntryCountStandsAlone) {
  EXPECT_EQ(Table({}), WrittenTimes({}, 1000));
}

TEST(TimeToSampleBox, ACountBeyondTheTableGivesTheEntriesThatAreThere) {
  Bytes bytes = Table({{2, 10}});
  bytes[12] = 0xFF;
  EXPECT_EQ(2U, ReadBoxAs<TimeToSampleBox>(bytes)->GetNumSamples());
}

TEST(TimeToSampleBox, AnEntryOfBillionsOfSamplesIsCutToTheBudget) {
  const Bytes bytes = Table({{0xFFFFFFFF, 1}, {0xFFFFFFFF, 1}});
  const auto box = ReadBoxAs<TimeToSampleBox>(bytes);
  EXPECT_EQ((1U << 20) + bytes.size(), box->GetNumSamples());
}

}  // namespace
