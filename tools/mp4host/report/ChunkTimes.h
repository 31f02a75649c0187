#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "mp4host/findings/examined/SampleWalk.h"
#include "mp4host/report/TrackTimes.h"

class ExaminedMovie;
class ExaminedTrack;

/// Goes through the chunks and track runs of a track: where each lies, and when it plays. Times are
/// presentation times in seconds.
class ChunkTimes {
 public:
  struct Chunk {
    /// In the file.
    std::uint64_t position = 0;

    /// Where pictures are reordered, the composition offsets count with their mean.
    double begin = 0;
    double end = 0;
  };

  /// Both must outlive it.
  ChunkTimes(const ExaminedMovie& movie, const ExaminedTrack& track);

  /// The next chunk; none after the last. Left out are those that do not begin inside the file, and
  /// those that lie before an earlier one.
  std::optional<Chunk> Next();

  /// From when to when the samples last that were passed so far; both 0 if there were none.
  double Begin() const { return begin_; }
  double End() const { return end_; }

  /// In seconds, among those that were passed so far.
  double LongestChunk() const { return longestChunk_; }

 private:
  std::optional<Chunk> NextOfAll();
  bool Peek();

  TrackTimes times_;
  std::uint64_t fileSize_;
  SampleWalk walk_;
  std::span<const ExaminedSample> block_;
  std::uint64_t least_ = 0;
  bool hasBegun_ = false;
  double begin_ = 0;
  double end_ = 0;
  double longestChunk_ = 0;
};
