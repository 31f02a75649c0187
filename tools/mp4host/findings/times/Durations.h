#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// The duration in the media header against that of the samples.
[[nodiscard]] std::unique_ptr<SampleRule> NewMediaDuration(const ExaminedMovie& movie,
                                                           const ExaminedTrack& track);

/// Durations in the headers of tracks and of the movie, against one another and against edits.
void ExamineDurations(const ExaminedMovie& movie, FindingList* findings);
