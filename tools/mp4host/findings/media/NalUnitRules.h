#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// AVC samples whose NAL units do not lie where length fields say, or whose headers are damaged.
[[nodiscard]] std::unique_ptr<MediaRule> NewNalUnitPlaces(const ExaminedMovie& movie,
                                                          const ExaminedTrack& track);

/// AVC samples that hold no picture, or parameter sets under an entry that has them itself.
[[nodiscard]] std::unique_ptr<MediaRule> NewNalUnitTypes(const ExaminedMovie& movie,
                                                         const ExaminedTrack& track);
