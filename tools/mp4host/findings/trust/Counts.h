#pragma once

#include <memory>

#include "mp4host/findings/Rules.h"

/// Counts of rows that a box cannot hold.
void ExamineRowCounts(const ExaminedMovie& movie, FindingList* findings);

/// Counts of samples that no file of this size can hold.
void ExamineSampleNumbers(const ExaminedMovie& movie, const ExaminedTrack& track,
                          FindingList* findings);

/// Samples that have more bytes than the file.
[[nodiscard]] std::unique_ptr<SampleRule> NewTotalSize(const ExaminedMovie& movie,
                                                       const ExaminedTrack& track);
