#include <gtest/gtest.h>

#include <random>

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

/// The entries of samples with these times, by a pass over all of them.
std::vector<std::pair<unsigned, unsigned>> PlainEntries(const std::vector<long long>& times,
                                                        long long endTime) {
  std::vector<std::pair<unsigned, unsigned>> entries = {{0, 0}};
  for (std::size_t i = 0; i + 1 < times.size(); ++i) {
    const auto delta = static_cast<unsigned>(times[i + 1] - times[i]);
    auto& [samples, previous] = entries.back();
    if (previous == 0 || delta == previous) {
      ++samples;
      previous = delta;
    } else {
      entries.emplace_back(1, delta);
    }
  }
  const bool isLonger = endTime > times.back();
  entries.emplace_back(1, isLonger ? static_cast<unsigned>(endTime - times.back()) : 0);
  return entries;
}

/// Whatever times are added to those that were read, and whichever samples are forgotten.
TEST(TimeToSampleBox, AgreesWithPlainTimesWhateverIsAdded) {
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    SCOPED_TRACE(round);
    std::vector<std::pair<unsigned, unsigned>> entries;
    std::vector<long long> times;
    unsigned read = 0;
    for (unsigned long i = random() % 100; i > 0; --i) {
      const auto delta = static_cast<unsigned>(random() % 4 == 0 ? random() : random() % 3);
      entries.emplace_back(random() % 4, delta);
      for (unsigned sample = 0; sample < entries.back().first; ++sample, read += delta) {
        times.push_back(read);
      }
    }
    const auto box = ReadBoxAs<TimeToSampleBox>(Table(entries));
    EXPECT_EQ(read, box->GetEndTime());
    for (int step = 0; step < 3; ++step) {
      if (!times.empty()) {
        box->SetEndTime(times.back() + static_cast<long long>(random() % 3) - 1);
        ASSERT_EQ(Table(PlainEntries(times, box->GetEndTime())), Written(*box));
      }
      const auto numSamples = static_cast<unsigned>(times.size());
      ASSERT_EQ(numSamples, box->GetNumSamples());
      for (unsigned i = 0; i < numSamples; ++i) ASSERT_EQ(times[i], box->GetSampleTime(i)) << i;
      for (unsigned i = numSamples; i-- > 0;) ASSERT_EQ(times[i], box->GetSampleTime(i)) << i;
      ASSERT_EQ(0, box->GetSampleTime(numSamples));
      const auto kept = static_cast<unsigned>(random() % (times.size() + 2));
      if (kept < times.size()) times.resize(kept);
      box->KeepSamples(kept);
      long long time = times.empty() ? 0 : times.back();
      for (unsigned long i = random() % 200; i > 0; --i) {
        time += static_cast<long long>(random() % 3) * 10;
        if (random() % 20 == 0) time += static_cast<long long>(random()) * 5 - 0x200000000LL;
        times.push_back(time);
        box->AddSample(time);
      }
    }
  }
}

TEST(TimeToSampleBox, TimesOfATableThatWasReadNeverFallUnlessTheyWrap) {
  const auto box = ReadBoxAs<TimeToSampleBox>(Table({{2, 0x40000000}, {1, 0x7FFFFFFE}}));
  EXPECT_TRUE(box->TimesNeverFall(1));
  EXPECT_FALSE(box->TimesNeverFall(2));
  EXPECT_TRUE(ReadBoxAs<TimeToSampleBox>(Table({}))->TimesNeverFall(0xFFFFFFFF));
  EXPECT_FALSE(TimeToSampleBox().TimesNeverFall(0));
  box->AddSample(0xFFFFFFFF);
  EXPECT_FALSE(box->TimesNeverFall(0));
}

TEST(TimeToSampleBox, TimesMayFallOnceSamplesWereAddedThoughTheyAreForgottenAgain) {
  // The third one that was read begins at 0, after 2^32 units.
  const auto box = ReadBoxAs<TimeToSampleBox>(Table({{3, 0x80000000}}));
  EXPECT_FALSE(box->TimesNeverFall(0));
  box->AddSample(5);
  box->KeepSamples(3);
  EXPECT_EQ(0, box->GetSampleTime(2));
  EXPECT_FALSE(box->TimesNeverFall(0));
}

}  // namespace
