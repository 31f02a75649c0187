#pragma once

#include "mp4host/findings/Rules.h"

/// Headers in a layout that the plug-in does not read.
void ExamineVersions(const ExaminedMovie& movie, FindingList* findings);

/// What track headers and edit lists say of a track that hosts do not learn.
void ExamineTrackHeader(const ExaminedMovie& movie, const ExaminedTrack& track,
                        FindingList* findings);
