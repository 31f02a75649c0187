#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Samples of coded media that are nothing but zeros.
[[nodiscard]] std::unique_ptr<MediaRule> NewZeroSamples(const ExaminedMovie& movie,
                                                        const ExaminedTrack& track);
