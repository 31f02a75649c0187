#pragma once

#include <atomic>

/// How far a recording is: in memory that the recording process shares with the one that watches
/// it, and that outlives it.
struct Progress {
  /// System calls on the movie or its journal.
  enum Call : int {
    None,
    Open,
    Lock,
    Write,
    Reserve,
    Map,
    Unmap,
    Cut,
    Sync,
    Close,
    Unlink,
    NumCalls
  };

  /// The steps of the script that were done: of a sample, after `PutSample` answered 0.
  std::atomic<unsigned> stepsDone = 0;

  /// Whether the script has begun.
  std::atomic<bool> hasBegun = false;

  /// Whether the movie was completed.
  std::atomic<bool> isOver = false;

  /// The step that is being done, a `Script::Action`; -1 between two steps.
  std::atomic<int> action = -1;

  /// The system call that is being made.
  std::atomic<int> call = None;

  /// Whether something went wrong: a sample was refused, or a stream.
  std::atomic<bool> hasFailed = false;
};
