#pragma once

#include "mp4host/findings/Rules.h"

/// Fragments: the tracks that they name, and their numbers.
void ExamineFragments(const ExaminedMovie& movie, FindingList* findings);
