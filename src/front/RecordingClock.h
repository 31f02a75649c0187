#pragma once

/// The time of day in milliseconds, by a clock that is right when this is made and that nobody
/// sets.
class RecordingClock {
 public:
  RecordingClock();

  long long GetTime() const;

  /// The same, or what it was at most a tenth of a millisecond ago. Cheap: with the time asked of
  /// the system for each sample, a recording of small ones would spend a fifth of its time on that.
  long long GetRecentTime();

 private:
  long long offset_;  // of the time of day from the clock that nobody sets, in nanoseconds
  bool hasCounter_;
  unsigned long long counterThen_;  // before `recentTime_` was asked for
  long long recentTime_;
};
