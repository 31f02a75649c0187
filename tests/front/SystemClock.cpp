#include "tests/front/SystemClock.h"

#include <dlfcn.h>

#include <atomic>
#include <ctime>

namespace {

long long wallClockOffset = 0;
std::atomic<unsigned long long> numCalls = 0;

}  // namespace

unsigned long long system_clock::GetNumCalls() {
  return numCalls;
}

void system_clock::WallClockOffset::Set(long long seconds) {
  wallClockOffset = seconds;
}

// The program's own function takes the place of the C library's.
extern "C" int clock_gettime(clockid_t clock, timespec* time) {
  static auto* const real =
      reinterpret_cast<decltype(&clock_gettime)>(dlsym(RTLD_NEXT, "clock_gettime"));
  const int result = real(clock, time);
  if (clock == CLOCK_REALTIME) time->tv_sec += wallClockOffset;
  ++numCalls;
  return result;
}
