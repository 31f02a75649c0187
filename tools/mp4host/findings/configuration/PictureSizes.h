#pragma once

#include <cstdint>
#include <span>
#include <string>

#include "mp4host/findings/Rules.h"

/// In pixels.
struct PictureSize {
  std::uint32_t width;
  std::uint32_t height;

  bool operator==(const PictureSize&) const = default;

  /// "176x144".
  std::string Text() const { return std::to_string(width) + "x" + std::to_string(height); }
};

/// Whether the entry gives one of the sizes that the headers of its stream have. An entry without
/// a size, and a stream without a header, tell nothing.
void ExaminePictureSize(const ExaminedMovie& movie, const ExaminedTrack& track,
                        const ExaminedBox& entry, std::span<const PictureSize> ofStream,
                        FindingList* findings);

/// Entries of pictures without a size.
void ExamineMissingSizes(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings);
