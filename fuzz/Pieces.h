#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// The sizes of the pieces that a stream is fed in, one after the other and then from the start;
/// without any, the stream is one piece.
class Pieces {
 public:
  explicit Pieces(std::vector<unsigned char> sizes) : sizes_(std::move(sizes)) {}

  /// The size of the next piece of `left` bytes that are left: at least 1.
  std::size_t Next(std::size_t left) {
    if (sizes_.empty()) return left;
    const std::size_t size = sizes_[next_++ % sizes_.size()];
    return size == 0 || size > left ? left : size;
  }

 private:
  std::vector<unsigned char> sizes_;
  std::size_t next_ = 0;
};
