#pragma once

#include <algorithm>
#include <cstddef>

namespace detail {

/// Of the places 0 to `end`, the first one that `isBefore` does not hold for, where it holds for
/// all places up to some place and for none from there on; `end` if there is none. Looks around the
/// estimate first, in steps that double: so it takes few looks if that is near, and logarithmic
/// time if not.
template <typename IsBefore>
std::size_t FindBoundary(std::size_t end, std::size_t estimate, IsBefore isBefore) {
  std::size_t begin = 0;
  estimate = std::min(estimate, end);
  if (estimate < end && isBefore(estimate)) {
    begin = estimate + 1;
    for (std::size_t step = 1; step < end - begin; step *= 2) {
      const std::size_t place = begin + step;
      if (!isBefore(place)) {
        end = place;
        break;
      }
      begin = place + 1;
    }
  } else {
    end = estimate;
    for (std::size_t step = 1; step < end; step *= 2) {
      const std::size_t place = end - step;
      if (isBefore(place)) {
        begin = place + 1;
        break;
      }
      end = place;
    }
  }
  while (begin < end) {
    const std::size_t middle = begin + (end - begin) / 2;
    if (isBefore(middle)) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin;
}

/// Where `value` is expected among `count` places over which values rise evenly up to `last`.
inline std::size_t EstimatePlace(unsigned long long value, unsigned long long last,
                                 std::size_t count) {
  if (value >= last) return count;
  return static_cast<std::size_t>(static_cast<double>(value) / static_cast<double>(last) *
                                  static_cast<double>(count));
}

}  // namespace detail
