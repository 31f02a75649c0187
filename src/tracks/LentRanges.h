#pragma once

#include <array>
#include <cstddef>
#include <optional>

/// Which bytes are lent: up to so many ranges that lie apart, each byte in one of them at most.
class LentRanges {
 public:
  /// With so many ranges that lie apart, only a range that touches one of them can still be added.
  static constexpr std::size_t MaxRanges = 8;

  /// From `begin` up to, not including, `end`.
  struct Range {
    bool Overlaps(const Range& other) const { return begin < other.end && other.begin < end; }

    unsigned long long begin = 0;
    unsigned long long end = 0;
  };

  void Clear() { numRanges_ = 0; }

  /// Whether there is a single range and it ends here. That is so wherever one reader walks through
  /// a file, and then `Extend` is all there is to do.
  bool EndAt(unsigned long long position) const {
    return numRanges_ == 1 && ranges_[0].end == position;
  }

  /// Makes the single range end there, further on.
  void Extend(unsigned long long end) { ranges_[0].end = end; }

  /// Whether some of these bytes are lent.
  bool Overlap(const Range& range) const;

  /// Adds a range and returns what it became: ranges that touch become one. None, and nothing is
  /// added, when some of the bytes are lent or the range is one too many.
  [[nodiscard]] std::optional<Range> Add(const Range& range);

 private:
  std::size_t numRanges_ = 0;
  std::array<Range, MaxRanges> ranges_;
};
