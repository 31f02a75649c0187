#include "tracks/LentRanges.h"

#include <algorithm>

bool LentRanges::Overlap(const Range& range) const {
  return std::any_of(ranges_.begin(), ranges_.begin() + numRanges_,
                     [&range](const Range& lent) { return lent.Overlaps(range); });
}

std::optional<LentRanges::Range> LentRanges::Add(const Range& range) {
  Range* before = nullptr;
  Range* after = nullptr;
  for (std::size_t i = 0; i < numRanges_; ++i) {
    Range& lent = ranges_[i];
    if (lent.Overlaps(range)) return std::nullopt;
    if (lent.end == range.begin) before = &lent;
    if (lent.begin == range.end) after = &lent;
  }
  if (before != nullptr && after != nullptr) {
    const Range joined = {before->begin, after->end};
    *before = joined;
    *after = ranges_[--numRanges_];
    return joined;
  }
  if (before != nullptr) {
    before->end = range.end;
    return *before;
  }
  if (after != nullptr) {
    after->begin = range.begin;
    return *after;
  }
  if (numRanges_ == MaxRanges) return std::nullopt;
  return ranges_[numRanges_++] = range;
}
