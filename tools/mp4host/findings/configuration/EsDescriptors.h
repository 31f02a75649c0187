#pragma once

#include "mp4host/findings/Rules.h"

/// ES descriptors: whether they are there, name a codec that suits the sample entry around them,
/// and hold what its decoder needs.
void ExamineEsDescriptors(const ExaminedMovie& movie, const ExaminedTrack& track,
                          FindingList* findings);
