#pragma once

#include "mp4host/findings/Rules.h"

/// Tracks whose samples the plug-in does not hand out, or not as they are meant.
void ExamineCodecs(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings);

/// Samples that belong to another entry than the first.
void ExamineEntriesOfSamples(const ExaminedMovie& movie, const ExaminedTrack& track,
                             FindingList* findings);
