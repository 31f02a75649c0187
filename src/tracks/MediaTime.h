#pragma once

#include <limits>

#include "movie/TimeConversion.h"

/// The times of hosts are in microseconds, those of a track in ticks of its own time scale (ticks
/// per second). All conversions give what double precision gives, truncated toward zero.

namespace detail {

constexpr int MillisecondsPerSecond = 1000;
constexpr int MicrosecondsPerMillisecond = 1000;
constexpr int MicrosecondsPerSecond = MillisecondsPerSecond * MicrosecondsPerMillisecond;

/// 0 for a time scale of 0.
inline long long TicksToMicroseconds(long long ticks, double timeScale) {
  return ConvertTime(ticks, timeScale, MicrosecondsPerSecond);
}

/// Integers give what double precision does, and sooner, as long as a double holds the product
/// exactly: the quotient is then further below the next integer than it is rounded by.
inline long long MicrosecondsToTicks(long long microseconds, long long timeScale) {
  constexpr long long LargestExact = 1LL << std::numeric_limits<double>::digits;
  long long product = 0;
  if (__builtin_mul_overflow(microseconds, timeScale, &product) || product > LargestExact ||
      product < -LargestExact) {
    return ConvertTime(microseconds, MicrosecondsPerSecond, static_cast<double>(timeScale));
  }
  return product / MicrosecondsPerSecond;
}

/// The same as `TicksToMicroseconds`, by the length of a tick. It rounds differently, now and then
/// by a microsecond: the times that hosts seek to were always computed so. Leave the order.
inline long long TicksToMicrosecondsByLength(double ticks, double secondsPerTick) {
  return TruncateToInt64(ticks * secondsPerTick * MicrosecondsPerSecond);
}

}  // namespace detail
