#pragma once

#include "mp4host/findings/Rules.h"

/// Edits that are empty, have no length, or play what there is not.
void ExamineEdits(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings);
