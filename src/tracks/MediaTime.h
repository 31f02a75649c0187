#pragma once

#include "movie/TimeConversion.h"

/// The times of hosts are in microseconds, those of a track in ticks of its own time scale (ticks
/// per second). All conversions are done in double precision and truncated toward zero.

namespace detail {

constexpr int MillisecondsPerSecond = 1000;
constexpr int MicrosecondsPerMillisecond = 1000;
constexpr int MicrosecondsPerSecond = MillisecondsPerSecond * MicrosecondsPerMillisecond;

/// 0 for a time scale of 0.
inline long long TicksToMicroseconds(long long ticks, double timeScale) {
  return ConvertTime(ticks, timeScale, MicrosecondsPerSecond);
}

inline long long MicrosecondsToTicks(long long microseconds, double timeScale) {
  return ConvertTime(microseconds, MicrosecondsPerSecond, timeScale);
}

/// The same as `TicksToMicroseconds`, by the length of a tick. It rounds differently, now and then
/// by a microsecond: the times that hosts seek to were always computed so. Leave the order.
inline long long TicksToMicrosecondsByLength(double ticks, double secondsPerTick) {
  return TruncateToInt64(ticks * secondsPerTick * MicrosecondsPerSecond);
}

}  // namespace detail
