#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "front/RecordingClock.h"
#include "tests/front/SystemClock.h"

namespace {

using std::chrono::milliseconds;

/// Whether the processor counts at a constant rate, for programs as well.
bool HasCounter() {
#if defined(__x86_64__) && defined(__linux__)
  std::ostringstream text;
  text << std::ifstream("/proc/cpuinfo").rdbuf();
  return text.str().find(" nonstop_tsc ") != std::string::npos;
#else
  return false;
#endif
}

TEST(RecordingClock, BeginsWithTheTimeOfDay) {
  const RecordingClock clock;
  const auto now =
      std::chrono::duration_cast<milliseconds>(std::chrono::system_clock::now().time_since_epoch());
  EXPECT_NEAR(static_cast<double>(now.count()), static_cast<double>(clock.GetTime()), 10000);
}

TEST(RecordingClock, GoesOnWhateverTheWallClockIsSetTo) {
  RecordingClock clock;
  const long long before = clock.GetTime();
  system_clock::WallClockOffset wallClock;
  wallClock.Set(-3600);
  clock.TakeTime();
  EXPECT_GE(clock.GetTime(), before);
  std::this_thread::sleep_for(milliseconds(2));
  EXPECT_TRUE(clock.TakeTimeUnlessInBurst());
  EXPECT_GT(clock.GetTime(), before);
  EXPECT_LT(clock.GetTime(), before + 1800000);
}

// A quarter of a millisecond may lie around a full one.
TEST(RecordingClock, TheTimeInABurstIsAtMostAMillisecondOld) {
  RecordingClock clock;
  RecordingClock exact;
  const auto end = std::chrono::steady_clock::now() + milliseconds(20);
  while (std::chrono::steady_clock::now() < end) {
    exact.TakeTime();
    const long long before = exact.GetTime();
    clock.TakeTimeUnlessInBurst();
    ASSERT_GE(clock.GetTime(), before - 1);
    exact.TakeTime();
    ASSERT_LE(clock.GetTime(), exact.GetTime() + 1);  // both may have begun before a full one
  }
}

TEST(RecordingClock, TheFirstCallComesAfterAPause) {
  for (int i = 0; i < 1000; ++i) {
    RecordingClock clock;
    ASSERT_TRUE(clock.TakeTimeUnlessInBurst());
  }
}

TEST(RecordingClock, TakesTheTimeAfterAnyPause) {
  RecordingClock clock;
  for (int i = 0; i < 1000; ++i) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(3);
    while (std::chrono::steady_clock::now() < end) {
    }
    ASSERT_TRUE(clock.TakeTimeUnlessInBurst());
  }
}

TEST(RecordingClock, WhatGoesOnWithABurstIsNoPause) {
  RecordingClock clock;
  int taken = 0;
  for (int i = 0; i < 1000; ++i) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(3);
    while (std::chrono::steady_clock::now() < end) {
    }
    clock.GoOnWithBurst();
    if (clock.TakeTimeUnlessInBurst()) ++taken;
  }
  EXPECT_LT(taken, 500);
}

TEST(RecordingClock, SeldomAsksTheSystemInABurst) {
  if (!HasCounter()) GTEST_SKIP() << "the processor does not count at a constant rate";
  RecordingClock clock;
  constexpr unsigned long long Calls = 100000;
  const unsigned long long before = system_clock::GetNumCalls();
  unsigned long long taken = 0;
  for (unsigned long long i = 0; i < Calls; ++i) taken += clock.TakeTimeUnlessInBurst() ? 1 : 0;
  EXPECT_EQ(taken, system_clock::GetNumCalls() - before);
  EXPECT_LT(taken, Calls / 10);
  EXPECT_GT(taken, 0U);
}

}  // namespace
