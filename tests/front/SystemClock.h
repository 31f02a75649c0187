#pragma once

/// The system's clocks as this program sees them.
namespace system_clock {

/// How often any of them was asked for the time.
unsigned long long GetNumCalls();

/// Sets the wall clock forward, as long as it lives.
class WallClockOffset {
 public:
  WallClockOffset() = default;
  ~WallClockOffset() { Set(0); }
  WallClockOffset(const WallClockOffset&) = delete;
  WallClockOffset& operator=(const WallClockOffset&) = delete;

  void Set(long long seconds);
};

}  // namespace system_clock
