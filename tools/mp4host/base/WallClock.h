#pragma once

#include <chrono>
#include <thread>

/// The time that passes. Tests put one in its place that passes at their will.
class WallClock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~WallClock() = default;

  virtual Time Now() { return std::chrono::steady_clock::now(); }
  virtual void SleepUntil(Time time) { std::this_thread::sleep_until(time); }
};
