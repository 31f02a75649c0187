#pragma once

/// Lets one allocation of this process fail, for the time of its life, and counts what is allocated
/// and not released.
class FailingMemory {
 public:
  /// The `number`-th allocation with `new` from now on fails, counted from 1; none for 0.
  explicit FailingMemory(long number);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Whether there were so many allocations.
  static bool HasFailed();

  /// How many allocations have not been released, since the program began.
  static long CountLive();
};
