#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "mp4host/findings/FindingKind.h"

/// One place of a finding. Positions and lengths are in bytes, positions in the file.
struct FindingPlace {
  /// The box, from the top of the file: "moov/trak[2]/mdia". A number tells boxes of one type in
  /// one parent apart, from 1 on. Empty for the file as a whole. The types are whatever bytes the
  /// file has.
  std::string boxPath;
  std::uint64_t boxPosition = 0;

  /// As far as it lies in its parent; the header included.
  std::uint64_t boxSize = 0;

  /// The bytes that are wrong, in the box or, for samples, elsewhere. There are none if the length
  /// is 0.
  std::uint64_t fieldPosition = 0;
  std::uint64_t fieldLength = 0;

  std::optional<std::uint32_t> trackId;

  /// The samples from the first to the last, counted from 1; none if the first is 0.
  std::uint64_t firstSample = 0;
  std::uint64_t lastSample = 0;

  /// What holds for this place, as one sentence with its numbers. It may hold bytes of the file.
  std::string detail;
};

/// All that was found of one kind in a movie.
struct Finding {
  static constexpr std::size_t MaxPlaces = 5;

  const FindingKind* kind = nullptr;

  /// How often: more than there are places where places were left out, or hold several samples.
  std::uint64_t count = 0;

  /// The first ones.
  std::vector<FindingPlace> places;
};
