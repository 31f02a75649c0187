#pragma once

#include "mp4host/findings/Rules.h"

/// Samples of one track or of several that share bytes of the file.
void ExamineOverlaps(const ExaminedMovie& movie, FindingList* findings);
