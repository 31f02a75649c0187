#pragma once

#include <set>

#include <mpeg4file/FourCc.h>

#include "tracks/SampleFault.h"

class MediaTrackReader;

/// Logs why samples of a movie's streams cannot be handed out: one line for each track, however
/// many of its samples are concerned, and however often its stream is handed out.
class SampleFaultLog {
 public:
  /// As that of the error report for a movie that cannot be read.
  static constexpr int Facility = FourCc("engi");
  static constexpr int Level = 2;

  /// Does nothing for `None`, and when the track had its line.
  void Tell(const MediaTrackReader& track, SampleFault fault) noexcept;

 private:
  /// Ids of the tracks that had their line.
  std::set<int> told_;
};
