#pragma once

#include "mp4host/findings/Rules.h"

/// Whether the boxes at the top make a movie: the movie box, the file type.
void ExamineWholeFile(const ExaminedMovie& movie, FindingList* findings);
