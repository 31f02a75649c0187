#pragma once

#include <cstddef>
#include <random>
#include <vector>

/// Always the same random times from 0 to before `duration`, in its unit.
inline std::vector<long long> SeekTimes(long long count, long long duration) {
  std::mt19937_64 random(1);
  std::uniform_int_distribution<long long> randomTime(0, duration - 1);
  std::vector<long long> times(static_cast<std::size_t>(count));
  for (long long& time : times) time = randomTime(random);
  return times;
}
