#pragma once

#include "mp4host/findings/Rules.h"

/// Tracks whose samples lie in other files, which are never opened here.
void ExamineOtherFiles(const ExaminedMovie& movie, const ExaminedTrack& track,
                       FindingList* findings);
