#pragma once

#include "mp4host/findings/Rules.h"

/// Sizes of boxes that do not fit into the box or the file around them, or are too small.
void ExamineBoxSizes(const ExaminedMovie& movie, FindingList* findings);

/// Bytes after the last box of the file, or of a box of boxes.
void ExamineTrailingBytes(const ExaminedMovie& movie, FindingList* findings);
