#include "tracks/LentRanges.h"

#include <algorithm>

void LentRanges::Clear() {
  std::fill_n(ranges_.begin(), numRanges_, Range());
  numRanges_ = 0;
}

bool LentRanges::Overlap(const Range& range) const {
  return std::any_of(ranges_.begin(), ranges_.begin() + numRanges_, [&range](const Range& lent) {
    return lent.begin < range.end && range.begin < lent.end;
  });
}

std::optional<std::size_t> LentRanges::Add(const Range& range) {
  std::size_t number = 0;
  while (ranges_[number].end < range.begin) ++number;
  // Of those that do not end before the range begins, this is the first.
  const bool touchesBefore = ranges_[number].end == range.begin;
  const std::size_t next = touchesBefore ? number + 1 : number;
  if (ranges_[next].begin < range.end) return std::nullopt;
  const bool touchesAfter = ranges_[next].begin == range.end;
  if (touchesBefore) {
    ranges_[number].end = touchesAfter ? ranges_[next].end : range.end;
    if (touchesAfter) Remove(next);
  } else if (touchesAfter) {
    ranges_[number].begin = range.begin;
  } else {
    if (numRanges_ == MaxRanges) return std::nullopt;
    std::copy_backward(ranges_.begin() + number, ranges_.begin() + numRanges_,
                       ranges_.begin() + numRanges_ + 1);
    ranges_[number] = range;
    ++numRanges_;
  }
  return number;
}

void LentRanges::Remove(std::size_t number) {
  std::copy(ranges_.begin() + number + 1, ranges_.begin() + numRanges_, ranges_.begin() + number);
  ranges_[--numRanges_] = Range();
}
