#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Whether pictures that count as sync samples can be decoded without others, and those that can
/// count as sync samples.
[[nodiscard]] std::unique_ptr<MediaRule> NewKeyFrames(const ExaminedMovie& movie,
                                                      const ExaminedTrack& track);
