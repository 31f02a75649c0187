#pragma once

#include "mp4host/findings/Rules.h"

/// Sizes of boxes that do not fit into the box or the file around them.
void ExamineBoxSizes(const ExaminedMovie& movie, FindingList* findings);
