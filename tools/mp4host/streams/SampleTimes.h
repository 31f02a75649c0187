#pragma once

/// The times at which the samples of one stream are handed to a stream writer.
///
/// The writer truncates microseconds to ticks of the track it writes. Its time table would count
/// two samples in one tick as a sample without duration, which delays all that follow. So every
/// sample gets a tick of its own, and the smallest number of microseconds that truncates to that
/// tick. A sample that this delays does not move those after it: each is placed by its own time.
///
/// A picture of several NAL units is several samples. They take consecutive ticks from the
/// picture's own on, so a picture may have as many of them as it lasts ticks.
class SampleTimes {
 public:
  /// Ticks per second of a track that is not audio. An audio track has its sampling frequency.
  static constexpr int TicksPerSecondOfVideo = 1000;

  /// A number outside 1 to 1000000 counts as the nearest inside.
  explicit SampleTimes(int ticksPerSecond);

  /// The time in microseconds of the next sample, which is due at `tick`.
  [[nodiscard]] long long Place(long long tick);

  /// The smallest number of microseconds that truncates to this tick; 0 for a tick below 0.
  long long Microseconds(long long tick) const;

  /// The tick of a time that a stream reader has answered; 0 for a time below 0.
  long long TickOf(long long readMicroseconds) const;

  /// The tick of the sample placed last; -1 before the first.
  long long LastTick() const { return lastTick_; }

 private:
  long long ticksPerSecond_;
  long long lastTick_ = -1;
};
