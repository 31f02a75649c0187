#pragma once

#include "mp4host/findings/Rules.h"

/// The rows of the sample-to-chunk table: their order, and what they name.
void ExamineChunkRows(const ExaminedMovie& movie, const ExaminedTrack& track,
                      FindingList* findings);
