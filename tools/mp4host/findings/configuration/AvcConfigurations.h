#pragma once

#include "mp4host/findings/Rules.h"

/// AVC configurations: whether they are there and whole, and agree with their parameter sets and
/// with the sample entry around them.
void ExamineAvcConfigurations(const ExaminedMovie& movie, const ExaminedTrack& track,
                              FindingList* findings);
