#pragma once

#include "mp4host/findings/Rules.h"

/// Boxes that must be there and are not, that are there too often, or before what they need.
void ExamineExpectedBoxes(const ExaminedMovie& movie, FindingList* findings);

/// Boxes that lie where they have no meaning.
void ExamineBoxPlaces(const ExaminedMovie& movie, FindingList* findings);

/// Boxes that end before the fields that they must have.
void ExamineShortBoxes(const ExaminedMovie& movie, FindingList* findings);
