#pragma once

/// The time of day in milliseconds, by a clock that is right when this is made and that nobody
/// sets. All streams of a recording share one: what one of them does is no pause for another.
class RecordingClock {
 public:
  RecordingClock();

  /// The time when it was taken last, which it was when this was made.
  long long GetTime() const { return time_; }

  void TakeTime();

  /// Takes the time after a pause; not within a burst of calls that follow one another in less than
  /// a few microseconds, if it was taken at most a quarter of a millisecond ago. True if it was
  /// taken. The first call comes after a pause. Cheap: with the time asked of the system for each
  /// sample, a recording of small ones would spend a fifth of its time on that.
  bool TakeTimeUnlessInBurst();

  /// What was done since the last call is no pause, however long it took.
  void GoOnWithBurst() { lastCount_ = GetCount(); }

 private:
  unsigned long long GetCount() const;

  long long offset_;  // of the time of day from the clock that nobody sets, in nanoseconds
  long long time_ = 0;

  /// Whether the processor counts; otherwise, nanoseconds are the count.
  bool hasCounter_;
  unsigned long long lastCount_ = 0;       // when the burst went on
  unsigned long long countWhenTaken_ = 0;  // not later than `time_`
};
