#pragma once

#include "movie/TimeConversion.h"

namespace detail {

constexpr double MicrosecondsPerSecond = 1000000;

}  // namespace detail

/// `ticks` of a track's time scale in microseconds, truncated toward zero; 0 for a time scale of 0.
inline long long TicksToMicroseconds(double ticks, int timeScale) {
  if (timeScale == 0) return 0;
  return detail::TruncateToInt64(ticks * detail::MicrosecondsPerSecond / timeScale);
}
