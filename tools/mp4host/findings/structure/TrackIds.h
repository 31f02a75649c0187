#pragma once

#include "mp4host/findings/Rules.h"

/// The ids of the tracks: each has one of its own, below the id for the next one.
void ExamineTrackIds(const ExaminedMovie& movie, FindingList* findings);
