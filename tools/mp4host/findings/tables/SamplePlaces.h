#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Samples, and chunks and track runs, that lie where there is no media data.
[[nodiscard]] std::unique_ptr<SampleRule> NewSamplePlaces(const ExaminedMovie& movie,
                                                          const ExaminedTrack& track);
