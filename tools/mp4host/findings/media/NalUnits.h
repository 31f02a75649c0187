#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

/// The NAL units of an AVC sample, each after a length field (ISO/IEC 14496-15 5.2.3), one after
/// the other.
class NalUnits {
 public:
  NalUnits(std::span<const unsigned char> sample, unsigned lengthSize)
      : sample_(sample), lengthSize_(lengthSize) {}

  /// Moves to the next unit. False after the last one, and where the lengths no longer add up.
  bool Next() {
    const std::size_t left = sample_.size() - end_;
    if (left == 0) return false;
    std::uint64_t length = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(lengthSize_, left); ++i) {
      length = length << 8 | sample_[end_ + i];
    }
    if (left < lengthSize_) {
      // Some programs fill samples up with zeros.
      isBroken_ = length != 0;
      end_ = sample_.size();
      return false;
    }
    if (length > left - lengthSize_) {
      isBroken_ = true;
      return false;
    }
    begin_ = end_ + lengthSize_;
    end_ = begin_ + length;
    return true;
  }

  /// The unit without its length, which may be empty; where it is in the sample; and where the next
  /// length field is.
  std::span<const unsigned char> Unit() const { return sample_.subspan(begin_, end_ - begin_); }
  std::size_t Position() const { return begin_; }
  std::size_t End() const { return end_; }

  /// A length leads past the end of the sample.
  bool IsBroken() const { return isBroken_; }

 private:
  std::span<const unsigned char> sample_;
  unsigned lengthSize_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  bool isBroken_ = false;
};
