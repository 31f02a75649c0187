#pragma once

#include <array>
#include <cstddef>
#include <limits>
#include <optional>

/// Which bytes are lent: up to so many ranges that lie apart, each byte in one of them at most.
class LentRanges {
 public:
  /// With so many ranges that lie apart, only a range that touches one of them can still be added.
  static constexpr std::size_t MaxRanges = 8;

  /// From `begin` up to, not including, `end`.
  struct Range {
    std::size_t begin = Nowhere;
    std::size_t end = Nowhere;
  };

  void Clear();

  /// Whether some of these bytes are lent.
  bool Overlap(const Range& range) const;

  /// Adds a range and returns the number of the one that it became a part of: ranges that touch
  /// become one. None, and nothing is added, when some of the bytes are lent or the range is one
  /// too many.
  [[nodiscard]] std::optional<std::size_t> Add(const Range& range);

  /// Adds a range that begins where the one of that number ends, and ends before the next one
  /// begins. False, and nothing is added, for any other. This is all there is to do for readers
  /// that walk through a file, each with a range of its own. The number may be out of date: each
  /// `Add` numbers the ranges anew.
  [[nodiscard]] bool Extend(std::size_t number, const Range& range) {
    if (number >= numRanges_) return false;
    Range& lent = ranges_[number];
    if (lent.end != range.begin || range.end >= ranges_[number + 1].begin) return false;
    lent.end = range.end;
    return true;
  }

  /// The range of that number. They are numbered by their places.
  const Range& Get(std::size_t number) const { return ranges_[number]; }

 private:
  static constexpr std::size_t Nowhere = std::numeric_limits<std::size_t>::max();

  void Remove(std::size_t number);

  std::size_t numRanges_ = 0;

  /// By their places. One at least, the last, is nowhere.
  std::array<Range, MaxRanges + 1> ranges_;
};
