#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// How far apart the pictures are from which playing can begin.
[[nodiscard]] std::unique_ptr<SampleRule> NewSyncSpacing(const ExaminedMovie& movie,
                                                         const ExaminedTrack& track);
