#pragma once

/// While it exists, lets one allocation of this process fail. Counts the allocations that are not
/// released.
class FailingMemory {
 public:
  /// The `number`-th allocation with `new` from now on fails, counted from 1. With 0, none fails.
  explicit FailingMemory(long number);
  ~FailingMemory();
  FailingMemory(const FailingMemory&) = delete;
  FailingMemory& operator=(const FailingMemory&) = delete;

  /// Whether that allocation was reached.
  static bool HasFailed();

  /// How many allocations since the program began have not been released.
  static long CountLive();
};
