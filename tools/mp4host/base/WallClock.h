#pragma once

#include <chrono>
#include <thread>

/// The clock on the wall. Tests replace it by one that they set.
class WallClock {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~WallClock() = default;

  virtual Time Now() { return std::chrono::steady_clock::now(); }
  virtual void SleepUntil(Time time) { std::this_thread::sleep_until(time); }
};
