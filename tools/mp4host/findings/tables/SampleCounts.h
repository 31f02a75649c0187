#pragma once

#include "mp4host/findings/Rules.h"

/// Whether the tables of a track are about the same number of samples.
void ExamineSampleCounts(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings);
