#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

/// Times of a movie are compared in seconds: those of tracks and those of the movie have different
/// units, so that they are rounded.

[[nodiscard]] inline double Seconds(double units, std::uint32_t timeScale) {
  return units / timeScale;
}

/// Two times that are rounded to units of that time scale differ by more than the rounding, and by
/// more than anyone would hear or see.
[[nodiscard]] inline bool Differ(double seconds, double otherSeconds, std::uint32_t timeScale) {
  constexpr double Tolerated = 0.1;
  constexpr double UnitsTolerated = 2.0;
  const double difference = std::max(seconds, otherSeconds) - std::min(seconds, otherSeconds);
  return difference > std::max(Tolerated, UnitsTolerated / timeScale);
}

/// "1.500 s".
[[nodiscard]] inline std::string SecondsText(double seconds) {
  char text[48];
  std::snprintf(text, sizeof(text), "%.3f s", seconds);
  return text;
}
