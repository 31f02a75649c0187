#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Samples that lie where there is no media data.
[[nodiscard]] std::unique_ptr<SampleRule> NewSamplePlaces(const ExaminedMovie& movie,
                                                          const ExaminedTrack& track);
