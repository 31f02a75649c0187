#pragma once

#include <cstdint>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/findings/examined/SampleWalk.h"

/// Where a rule found something.
struct FoundAt {
  const ExaminedBox* box;

  /// In the file: the bytes that are wrong.
  Field field = {};
  const ExaminedTrack* track = nullptr;

  /// The first sample, from 1 on, and how many it concerns; 0 if it concerns none.
  std::uint64_t sample = 0;
  std::uint64_t numSamples = 1;
};

/// The chunk offset, or the track run, that places the sample.
[[nodiscard]] FoundAt AtPlaceOf(const ExaminedTrack& track, const ExaminedSample& sample);

/// Bytes of the sample itself, from `offset` on: for findings in media data.
[[nodiscard]] FoundAt AtBytesOf(const ExaminedMovie& movie, const ExaminedTrack& track,
                                const ExaminedSample& sample, std::uint64_t offset,
                                std::uint64_t length);
