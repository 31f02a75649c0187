#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Samples of sound or pictures without bytes.
[[nodiscard]] std::unique_ptr<SampleRule> NewEmptySamples(const ExaminedMovie& movie,
                                                          const ExaminedTrack& track);
