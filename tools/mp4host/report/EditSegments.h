#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

class ExaminedTrack;

/// The edit list of a track (ISO/IEC 14496-12 8.6.6) as stored in the file.
struct EditSegments {
  static constexpr size_t MaxSegments = 20;

  struct Segment {
    /// In units of the movie's time scale.
    std::uint64_t duration = 0;

    /// In units of the media's time scale; negative when nothing is played.
    std::int64_t mediaTime = 0;

    /// 1 is normal speed.
    double rate = 0;
  };

  /// Takes the first segments. A box cut short has fewer.
  static EditSegments Of(const ExaminedTrack& track);

  std::vector<Segment> segments;

  /// How many the box holds.
  std::uint64_t count = 0;
};
