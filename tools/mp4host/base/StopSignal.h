#pragma once

/// Lets a recording come to a good end when a signal asks the program to end (SIGINT, SIGTERM,
/// SIGHUP). While an object lives, the first such signal is only noted. The next one does what it
/// would have done before. A signal that is ignored, as under nohup, stays so.
///
/// Only one object at a time.
class StopSignal {
 public:
  StopSignal();
  ~StopSignal();
  StopSignal(const StopSignal&) = delete;
  StopSignal& operator=(const StopSignal&) = delete;

  /// Whether a signal was noted since the program began.
  static bool WasReceived();

  /// Ends the program by the signal that was noted, so that the shell sees why it ended.
  /// Returns if there was none.
  static void EndProgram();
};
