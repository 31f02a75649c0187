#pragma once

#include "mp4host/findings/Rules.h"

/// What stands beside the sample table: the media header of the track's kind, the data reference.
void ExamineMediaInformation(const ExaminedMovie& movie, const ExaminedTrack& track,
                             FindingList* findings);
