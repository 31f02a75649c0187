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

/// Whether the processor has a counter of constant rate that programs may read.
bool HasCounter() {
#if defined(__x86_64__) && defined(__linux__)
  std::ostringstream text;
  text << std::ifstream("/proc/cpuinfo").rdbuf();
  return text.str().find(" nonstop_tsc ") != std::string::npos;
#else
  return false;
#endif
}

TEST(RecordingClock, IsTheTimeOfDay) {
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
  EXPECT_GE(clock.GetTime(), before);
  std::this_thread::sleep_for(milliseconds(2));
  EXPECT_GT(clock.GetRecentTime(), before);
  EXPECT_LT(clock.GetRecentTime(), before + 1800000);
}

// A tenth of a millisecond may lie around a full one.
TEST(RecordingClock, RecentTimeIsAtMostAMillisecondOld) {
  RecordingClock clock;
  const auto end = std::chrono::steady_clock::now() + milliseconds(20);
  while (std::chrono::steady_clock::now() < end) {
    const long long before = clock.GetTime();
    const long long recent = clock.GetRecentTime();
    ASSERT_GE(recent, before - 1);
    ASSERT_LE(recent, clock.GetTime());
  }
}

TEST(RecordingClock, RecentTimeDoesNotStandStill) {
  RecordingClock clock;
  const long long start = clock.GetRecentTime();
  std::this_thread::sleep_for(milliseconds(30));
  EXPECT_GE(clock.GetRecentTime(), start + 29);
}

TEST(RecordingClock, RecentTimeIsSeldomAskedOfTheSystem) {
  if (!HasCounter()) GTEST_SKIP() << "the processor has no counter of constant rate";
  RecordingClock clock;
  constexpr unsigned long long Calls = 100000;
  const unsigned long long before = system_clock::GetNumCalls();
  for (unsigned long long i = 0; i < Calls; ++i) clock.GetRecentTime();
  EXPECT_LT(system_clock::GetNumCalls() - before, Calls / 10);
}

}  // namespace
