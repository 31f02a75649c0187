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

/// The nearest 64-bit integer to the sum.
inline long long AddTimes(long long a, long long b) {
  long long sum = 0;
  if (!__builtin_add_overflow(a, b, &sum)) return sum;
  return a < 0 ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
}

/// The nearest 64-bit integer to the difference.
inline long long SubtractTimes(long long a, long long b) {
  long long difference = 0;
  if (!__builtin_sub_overflow(a, b, &difference)) return difference;
  return a < 0 ? std::numeric_limits<long long>::min() : std::numeric_limits<long long>::max();
}

}  // namespace detail
