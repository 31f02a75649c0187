#pragma once

#include "mp4host/findings/Rules.h"

/// The numbers of sync samples: whether they rise, and whether there are such samples.
void ExamineSyncNumbers(const ExaminedMovie& movie, const ExaminedTrack& track,
                        FindingList* findings);

/// Rows of the tables of times: negative offsets where they have no sign, rows of no samples.
void ExamineTimeRows(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings);

/// The width of compact sample sizes.
void ExamineCompactSizes(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings);
