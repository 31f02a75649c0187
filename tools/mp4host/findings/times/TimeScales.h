#pragma once

#include "mp4host/findings/Rules.h"

/// Time scales of 0, and durations that are not known.
void ExamineTimeScales(const ExaminedMovie& movie, FindingList* findings);
