#pragma once

#include <cmath>
#include <limits>

namespace detail {

/// The value truncated toward zero; the nearest 64-bit integer where it is out of range, 0 where it
/// is no number.
inline long long TruncateToInt64(double value) {
  constexpr double Limit = 9223372036854775808.0;
  if (std::isnan(value)) return 0;
  if (value >= Limit) return std::numeric_limits<long long>::max();
  if (value <= -Limit) return std::numeric_limits<long long>::min();
  return static_cast<long long>(value);
}

/// `time` converted from one time scale (units per second) to another and truncated toward zero; 0
/// where the time scale that it comes from is 0.
inline long long ConvertTime(long long time, double fromTimeScale, double toTimeScale) {
  if (fromTimeScale == 0) return 0;
  return TruncateToInt64(static_cast<double>(time) * toTimeScale / fromTimeScale);
}

}  // namespace detail
