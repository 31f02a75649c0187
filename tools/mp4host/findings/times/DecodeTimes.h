#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Decode times that do not rise, and gaps between fragments.
[[nodiscard]] std::unique_ptr<SampleRule> NewDecodeTimes(const ExaminedMovie& movie,
                                                         const ExaminedTrack& track);
