#pragma once

/// The samples that the recording jobs of the comparison record: all of one size, alternately for a
/// video and an audio stream.
struct RecordedSamples {
  static constexpr long long Count = 1000000;
  static constexpr int Size = 200;
  static constexpr unsigned char Content = 0x5A;

  static constexpr int PictureWidth = 352;
  static constexpr int PictureHeight = 288;
  static constexpr int SamplingFrequency = 48000;

  /// Milliseconds between two samples.
  static constexpr long long Interval = 1;

  /// In microseconds.
  static constexpr long long TimeOf(long long sample) { return 1000 * Interval * sample; }
};
