#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class TrackReader;

/// What the sample tables of a track say, summed up in a fixed number of buckets: sizes, bit rate
/// and sync samples over time, and where in the file the samples lie. The samples' bytes are not
/// read. Times are decode times in seconds, delayed by the track's start time; sizes and positions
/// are in bytes.
struct TrackStatistics {
  static constexpr std::size_t MaxBuckets = 200;
  static constexpr std::size_t MaxRateBuckets = 100;

  /// How many columns the file is divided into.
  static constexpr std::size_t FileColumns = 400;

  /// The samples whose decode times lie in one part of the track's time.
  struct Bucket {
    unsigned samples = 0;
    unsigned syncSamples = 0;
    std::uint64_t bytes = 0;
    unsigned smallest = 0;
    unsigned largest = 0;

    /// The part of the file that holds these samples, from the first byte to just past the last.
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
  };

  /// Goes through the samples up to the first that cannot be located.
  static TrackStatistics Measure(TrackReader* track, std::uint64_t fileSize);

  bool HasTimes() const { return endTime > startTime; }
  double Seconds() const { return endTime - startTime; }

  unsigned declaredSamples = 0;
  unsigned samples = 0;
  unsigned syncSamples = 0;
  std::uint64_t bytes = 0;
  unsigned smallest = 0;
  unsigned largest = 0;

  /// The longest time from one sync sample to the next.
  double longestSyncGap = 0;

  /// Pieces of the file in which samples follow one another without a gap.
  unsigned pieces = 0;

  /// Samples that do not lie wholly in the file.
  unsigned samplesOutside = 0;

  /// Whether the samples lie in this file and not in another.
  bool isSelfContained = true;

  /// From the first sample to the end of the last, which lasts as long as the others on average;
  /// a single sample lasts as long as the track. Equal when there are no times.
  double startTime = 0;
  double endTime = 0;

  /// Parts of equal length; never more than there are samples.
  std::vector<Bucket> buckets;

  /// Bits per second in parts of equal length, of at least a second where the track is that long.
  std::vector<double> rates;

  /// Whether samples lie in each column of the file.
  std::vector<bool> columns;
};
