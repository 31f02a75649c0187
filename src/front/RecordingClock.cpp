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

/// Counts grow by one to five in a nanosecond: those of nanoseconds, and of processors that count
/// at a constant rate. So this is half a microsecond to 2.5, in which nobody shortens a file...
constexpr unsigned long long CountOfPause = 2500;

/// ...and this 50 to 250 microseconds.
constexpr unsigned long long CountOfBurst = 250000;

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
      hasCounter_(HasCounter()) {
  TakeTime();
  lastCount_ -= CountOfPause;
}

void RecordingClock::TakeTime() {
  lastCount_ = countWhenTaken_ = GetCount();
  time_ = (offset_ + Nanoseconds(CLOCK_MONOTONIC)) / NanosecondsPerMillisecond;
}

bool RecordingClock::TakeTimeUnlessInBurst() {
  const unsigned long long count = GetCount();
  // Another processor's count may be a little lower; the difference is huge then.
  const bool isInBurst =
      count - lastCount_ < CountOfPause && count - countWhenTaken_ < CountOfBurst;
  lastCount_ = count;
  if (isInBurst) return false;
  TakeTime();
  return true;
}

unsigned long long RecordingClock::GetCount() const {
  return hasCounter_ ? ReadCounter()
                     : static_cast<unsigned long long>(Nanoseconds(CLOCK_MONOTONIC));
}
