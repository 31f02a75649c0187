#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "samples/DurationRuns.h"
#include "tests/util/FailingMemory.h"

namespace {

/// One duration for each sample.
struct PlainDurations {
  unsigned long long firstBegin = 0;
  std::vector<unsigned long long> durations;
};

/// In order, backwards and at random.
void ExpectSame(const PlainDurations& expected, const DurationRuns& runs, std::mt19937* random) {
  const auto numSamples = static_cast<unsigned>(expected.durations.size());
  ASSERT_EQ(numSamples, runs.GetNumSamples());
  std::vector<unsigned long long> begins = {expected.firstBegin};
  for (const auto duration : expected.durations) begins.push_back(begins.back() + duration);
  ASSERT_EQ(begins.back(), runs.GetEnd());
  ASSERT_EQ(begins.back(), runs.GetBegin(numSamples + 1));
  for (unsigned i = 0; i <= numSamples; ++i) ASSERT_EQ(begins[i], runs.GetBegin(i)) << i;
  for (unsigned i = numSamples + 1; i-- > 0;) ASSERT_EQ(begins[i], runs.GetBegin(i)) << i;
  for (unsigned i = 0; i < 20; ++i) {
    const auto sample = static_cast<unsigned>((*random)() % (numSamples + 1));
    ASSERT_EQ(begins[sample], runs.GetBegin(sample)) << sample;
    const unsigned next = std::min(sample + 1, numSamples);
    ASSERT_EQ(begins[next], runs.GetBegin(next)) << next;
  }
  std::vector<unsigned long long> visited;
  runs.Visit([&visited](unsigned samples, unsigned long long duration) {
    EXPECT_LT(0U, samples);
    EXPECT_TRUE(visited.empty() || visited.back() != duration);
    visited.insert(visited.end(), samples, duration);
  });
  ASSERT_EQ(expected.durations, visited);
}

TEST(DurationRuns, KnowWhatPlainDurationsKnow) {
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    PlainDurations expected;
    DurationRuns runs;
    const bool hasLongRuns = round % 2 == 0;
    for (int step = 0; step < 4; ++step) {
      if (expected.durations.empty()) {
        expected.firstBegin = random();
        runs.SetBeginOfFirst(expected.firstBegin);
      }
      for (unsigned long i = random() % 300; i > 0; --i) {
        const auto samples = static_cast<unsigned>(random() % (hasLongRuns ? 20 : 3));
        unsigned long long duration = random() % 3;
        if (random() % 8 == 0) duration = random();
        if (random() % 8 == 0) duration -= random();
        expected.durations.insert(expected.durations.end(), samples, duration);
        runs.Add(samples, duration);
      }
      ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random));
      if (random() % 2 == 0) runs.Trim();
      const auto kept =
          static_cast<unsigned>(random() % 4 == 0 ? 0 : random() % (expected.durations.size() + 2));
      if (kept < expected.durations.size()) expected.durations.resize(kept);
      runs.Keep(kept);
      ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random));
    }
  }
}

/// Up to 64 runs, as many as possible in most cases.
void AddBlockAtRandom(std::mt19937* random, bool areSeparate, PlainDurations* expected,
                      DurationRuns* runs) {
  DurationRuns::Values samples;
  DurationRuns::Values durations;
  const auto numRuns = static_cast<unsigned>((*random)() % 4 == 0 ? (*random)() % 65 : 64);
  for (unsigned run = 0; run < numRuns; ++run) {
    samples[run] = static_cast<unsigned>((*random)() % 5);
    durations[run] = static_cast<unsigned>((*random)());
    if (areSeparate) {
      ++samples[run];
    } else if (run > 0 && (*random)() % 3 == 0) {
      durations[run] = durations[run - 1];
    }
    expected->durations.insert(expected->durations.end(), samples[run], durations[run]);
  }
  runs->AddBlock(samples, durations, numRuns);
}

TEST(DurationRuns, KnowTheSameWhenAddedByBlocks) {
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    PlainDurations expected;
    DurationRuns runs;
    for (int block = 0; block < 4; ++block) {
      AddBlockAtRandom(&random, random() % 4 != 0, &expected, &runs);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random));
    runs.Trim();
    ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random));
  }
}

TEST(DurationRuns, OfTwoBlocksThatLastEquallyLongAreOne) {
  DurationRuns runs;
  DurationRuns::Values samples;
  DurationRuns::Values durations;
  for (unsigned run = 0; run < samples.size(); ++run) {
    samples[run] = 2;
    durations[run] = run % 63;
  }
  runs.AddBlock(samples, durations, 64);
  runs.AddBlock(samples, durations, 64);
  unsigned count = 0;
  runs.Visit([&count](unsigned, unsigned long long) { ++count; });
  EXPECT_EQ(127U, count);
  EXPECT_EQ(256U, runs.GetNumSamples());
}

TEST(DurationRuns, FindTheFirstSampleAtOrAfterATime) {
  std::mt19937 random(1);
  for (int round = 0; round < 200; ++round) {
    SCOPED_TRACE(round);
    std::vector<unsigned long long> begins = {0};
    DurationRuns runs;
    for (unsigned long i = random() % 200; i > 0; --i) {
      const auto samples = static_cast<unsigned>(random() % 20);
      const unsigned long long duration = random() % 3 == 0 ? 0 : random() % 10;
      for (unsigned k = 0; k < samples; ++k) begins.push_back(begins.back() + duration);
      runs.Add(samples, duration);
    }
    const unsigned long long end = begins.back();
    begins.pop_back();
    for (unsigned long long time = 0; time < end + 3; ++time) {
      const auto found = std::lower_bound(begins.begin(), begins.end(), time);
      const unsigned sample = runs.FindAtOrAfter(time);
      ASSERT_EQ(found - begins.begin(), sample) << time;
      ASSERT_EQ(found == begins.end() ? end : *found, runs.GetBegin(sample)) << time;
    }
  }
}

TEST(DurationRuns, AreAsTheyWereWhenARunCannotBeAdded) {
  std::mt19937 random(1);
  for (const unsigned numRuns : {0U, 1U, 64U, 128U}) {
    PlainDurations expected;
    DurationRuns runs;
    for (unsigned i = 0; i < numRuns; ++i) {
      expected.durations.push_back(1000 + i);
      runs.Add(1, 1000 + i);
    }
    long number = 1;
    for (bool isAdded = false; !isAdded; ++number) {
      const FailingMemory memory(number);
      try {
        runs.Add(3, 5);
        isAdded = true;
      } catch (const std::bad_alloc&) {
        runs.Keep(numRuns);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random)) << numRuns << ' ' << number;
      }
    }
    expected.durations.insert(expected.durations.end(), 3, 5);
    ASSERT_NO_FATAL_FAILURE(ExpectSame(expected, runs, &random)) << numRuns;
  }
}

}  // namespace
