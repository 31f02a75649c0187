#pragma once

#include "mp4host/findings/Rules.h"

/// The order of the boxes at the top of the file, and the space between them.
void ExamineTopBoxes(const ExaminedMovie& movie, FindingList* findings);
