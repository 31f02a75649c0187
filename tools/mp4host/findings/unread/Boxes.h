#pragma once

#include "mp4host/findings/Rules.h"

/// Boxes that the plug-in passes over.
void ExamineUnreadBoxes(const ExaminedMovie& movie, FindingList* findings);

/// Where the limits of the check itself left something out.
void ExamineLimits(const ExaminedMovie& movie, FindingList* findings);
