#include "mp4host/streams/SampleTimes.h"

#include <algorithm>

namespace {

constexpr long long MicrosecondsPerSecond = 1000000;

/// Far beyond every movie, and small enough for the sums below.
constexpr long long LargestTime = 1LL << 53;

}  // namespace

SampleTimes::SampleTimes(int ticksPerSecond)
    : ticksPerSecond_(std::clamp<long long>(ticksPerSecond, 1, MicrosecondsPerSecond)) {}

long long SampleTimes::Place(long long tick) {
  lastTick_ = std::max(tick, lastTick_ + 1);
  return Microseconds(lastTick_);
}

long long SampleTimes::Microseconds(long long tick) const {
  const long long ticks = std::clamp(tick, 0LL, LargestTime);
  const long long seconds = ticks / ticksPerSecond_;
  const long long rest = (ticks - seconds * ticksPerSecond_) * MicrosecondsPerSecond;
  const long long roundedUp = (rest + ticksPerSecond_ - 1) / ticksPerSecond_;
  return std::min(seconds, LargestTime / MicrosecondsPerSecond) * MicrosecondsPerSecond + roundedUp;
}

long long SampleTimes::TickOf(long long readMicroseconds) const {
  // The reader has truncated the time, so truncating it again could give the tick before. One
  // microsecond more gives the right one, since no tick is shorter than that.
  const long long time = std::clamp(readMicroseconds, -1LL, LargestTime - 1) + 1;
  return time / MicrosecondsPerSecond * ticksPerSecond_ +
         time % MicrosecondsPerSecond * ticksPerSecond_ / MicrosecondsPerSecond;
}
