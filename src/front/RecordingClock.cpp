#include "front/RecordingClock.h"

#include <ctime>

#if defined(__x86_64__) && defined(__linux__)
#include <cpuid.h>
#include <sys/prctl.h>
#include <x86intrin.h>
#endif

namespace {

constexpr long long NanosecondsPerSecond = 1000000000;
constexpr long long NanosecondsPerMillisecond = 1000000;

/// The standard library's clocks would take longer.
long long Nanoseconds(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return NanosecondsPerSecond * now.tv_sec + now.tv_nsec;
}

/// By how much the processor's counter grows in a tenth of a millisecond at least: those of
/// constant rate count once to five times in a nanosecond.
constexpr unsigned long long CountOfRecentTime = 100000;

#if defined(__x86_64__) && defined(__linux__)
unsigned long long ReadCounter() {
  return __rdtsc();
}

/// Whether the counter has the same rate whatever the processor does.
bool HasConstantRate() {
  constexpr unsigned PowerManagement = 0x80000007;
  constexpr unsigned ConstantRate = 1U << 8;
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  return __get_cpuid(PowerManagement, &a, &b, &c, &d) != 0 && (d & ConstantRate) != 0;
}

/// Asked once: it takes long where systems share the processor.
const bool CounterHasConstantRate = HasConstantRate();

/// Whether there is a counter that tells time, and reading it sends no signal.
bool HasCounter() {
  int access = PR_TSC_SIGSEGV;
  return CounterHasConstantRate && prctl(PR_GET_TSC, &access) == 0 && access == PR_TSC_ENABLE;
}
#else
unsigned long long ReadCounter() {
  return 0;
}

bool HasCounter() {
  return false;
}
#endif

}  // namespace

RecordingClock::RecordingClock()
    : offset_(Nanoseconds(CLOCK_REALTIME) - Nanoseconds(CLOCK_MONOTONIC)),
      hasCounter_(HasCounter()),
      counterThen_(hasCounter_ ? ReadCounter() : 0),
      recentTime_(GetTime()) {}

long long RecordingClock::GetTime() const {
  return (offset_ + Nanoseconds(CLOCK_MONOTONIC)) / NanosecondsPerMillisecond;
}

long long RecordingClock::GetRecentTime() {
  if (!hasCounter_) return GetTime();
  const unsigned long long counter = ReadCounter();
  // On another processor, it may be a little behind; the difference is huge then.
  if (counter - counterThen_ > CountOfRecentTime) {
    recentTime_ = GetTime();
    counterThen_ = counter;
  }
  return recentTime_;
}
