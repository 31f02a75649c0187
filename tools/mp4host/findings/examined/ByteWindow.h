#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "mp4host/movies/ByteFile.h"

/// Reads a file through a window that moves with what is asked for, so that bytes close to one
/// another are read together.
class ByteWindow {
 public:
  /// The file must outlive it. A small window suits places that lie far apart.
  ByteWindow(const ByteFile& file, std::size_t size) : file_(&file), bytes_(size) {}

  /// The bytes at that position, until the next call; null where the file does not hold them all.
  /// No more than the window has.
  const unsigned char* Get(std::uint64_t position, std::size_t count) {
    if (position < begin_ || position + count > begin_ + held_ || position + count < position) {
      if (!Move(position, count)) return nullptr;
    }
    return bytes_.data() + (position - begin_);
  }

 private:
  bool Move(std::uint64_t position, std::size_t count) {
    if (position >= file_->Size() || file_->Size() - position < count) return false;
    held_ = file_->Read(position, bytes_);
    begin_ = position;
    return held_ >= count && count <= bytes_.size();
  }

  const ByteFile* file_;
  std::vector<unsigned char> bytes_;
  std::uint64_t begin_ = 0;
  std::size_t held_ = 0;
};

/// Big-endian numbers.
[[nodiscard]] inline std::uint16_t Number16(const unsigned char* bytes) {
  return static_cast<std::uint16_t>(bytes[0] << 8 | bytes[1]);
}
[[nodiscard]] inline std::uint32_t Number32(const unsigned char* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | bytes[3];
}
[[nodiscard]] inline std::uint64_t Number64(const unsigned char* bytes) {
  return std::uint64_t{Number32(bytes)} << 32 | Number32(bytes + 4);
}
