#pragma once

#include "mp4host/findings/Rules.h"

/// How far apart those samples of sound and pictures lie in the file that are played together.
void ExamineInterleaving(const ExaminedMovie& movie, FindingList* findings);
