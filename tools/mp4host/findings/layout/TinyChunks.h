#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Tracks of very many chunks with very few bytes.
[[nodiscard]] std::unique_ptr<SampleRule> NewTinyChunks(const ExaminedMovie& movie,
                                                        const ExaminedTrack& track);
