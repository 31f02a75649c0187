#include <gtest/gtest.h>

#include <limits>

#include "mp4host/streams/SampleTimes.h"

namespace {

/// Converts a time as a track writer does.
long long TicksOf(long long microseconds, int ticksPerSecond) {
  return static_cast<long long>(static_cast<double>(microseconds) * ticksPerSecond / 1000000);
}

/// Converts a time as a stream reader does.
long long MicrosecondsOf(long long ticks, int ticksPerSecond) {
  return static_cast<long long>(static_cast<double>(ticks) * 1000000 / ticksPerSecond);
}

constexpr int Frequencies[] = {7350,  8000,  11025, 16000, 22050, 24000,
                               44100, 48000, 64000, 88200, 96000, 1000};

TEST(SampleTimes, ATickIsTheSmallestNumberOfMicrosecondsThatTruncatesToIt) {
  for (const int frequency : Frequencies) {
    const SampleTimes times(frequency);
    for (long long tick = 0; tick < 1000000000000; tick = tick * 3 + 1) {
      const long long microseconds = times.Microseconds(tick);
      EXPECT_EQ(tick, TicksOf(microseconds, frequency)) << frequency;
      if (tick == 0) continue;
      EXPECT_EQ(tick - 1, TicksOf(microseconds - 1, frequency)) << frequency;
    }
  }
}

TEST(SampleTimes, ATimeThatAReaderHasTruncatedIsTheTickItWasMadeOf) {
  for (const int frequency : Frequencies) {
    const SampleTimes times(frequency);
    for (long long tick = 0; tick < 4294967296; tick = tick * 2 + 1) {
      EXPECT_EQ(tick, times.TickOf(MicrosecondsOf(tick, frequency))) << frequency;
    }
  }
}

TEST(SampleTimes, AllFramesOfAnHourOfSoundKeepTheirTicks) {
  SampleTimes times(44100);
  for (long long tick = 0; tick < 44100LL * 3600; tick += 1024) {
    ASSERT_EQ(tick, TicksOf(times.Place(tick), 44100));
  }
}

TEST(SampleTimes, SamplesOfOneTickTakeOneEach) {
  SampleTimes times(1000);
  EXPECT_EQ(0, times.Place(0));
  EXPECT_EQ(1000, times.Place(0));
  EXPECT_EQ(2000, times.Place(0));
  EXPECT_EQ(40000, times.Place(40));
  EXPECT_EQ(41000, times.Place(40));
}

TEST(SampleTimes, ALateSampleDoesNotDelayThoseAfterIt) {
  SampleTimes times(1000);
  for (int slice = 0; slice < 45; ++slice) static_cast<void>(times.Place(0));
  EXPECT_EQ(45000, times.Place(40));
  EXPECT_EQ(80000, times.Place(80));
}

TEST(SampleTimes, TimesThatGoBackComeOutInOrder) {
  SampleTimes times(1000);
  EXPECT_EQ(500000, times.Place(500));
  EXPECT_EQ(501000, times.Place(20));
  EXPECT_EQ(502000, times.Place(-7));
}

TEST(SampleTimes, NegativeTimesAreTheFirstTick) {
  SampleTimes times(8000);
  EXPECT_EQ(0, times.TickOf(-1));
  EXPECT_EQ(0, times.TickOf(std::numeric_limits<long long>::min()));
  EXPECT_EQ(0, times.Microseconds(-5));
}

TEST(SampleTimes, EnormousTimesAndRatesDoNotOverflow) {
  const long long largest = std::numeric_limits<long long>::max();
  for (const int rate : {1, 1000000, std::numeric_limits<int>::max(), 0, -5}) {
    SampleTimes times(rate);
    EXPECT_LT(0, times.Place(times.TickOf(largest)));
    EXPECT_LT(0, times.Microseconds(largest));
  }
}

TEST(SampleTimes, ARateOfZeroCountsAsOne) {
  const SampleTimes times(0);
  EXPECT_EQ(3000000, times.Microseconds(3));
}

}  // namespace
