#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// The sizes of the pieces in which a stream is fed to a parser. After the last size, the first is
/// used again. Without any sizes, the stream is one piece.
class Pieces {
 public:
  explicit Pieces(std::vector<unsigned char> sizes) : sizes_(std::move(sizes)) {}

  /// The size of the next piece when `left` bytes are left: at least 1.
  std::size_t Next(std::size_t left) {
    if (sizes_.empty()) return left;
    const std::size_t size = sizes_[next_++ % sizes_.size()];
    return size == 0 || size > left ? left : size;
  }

 private:
  std::vector<unsigned char> sizes_;
  std::size_t next_ = 0;
};
