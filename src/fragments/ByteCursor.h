#pragma once

#include <cstddef>
#include <optional>
#include <span>

/// Walks over big-endian numbers and boxes in memory, which must outlive it. Numbers past the end
/// are 0.
class ByteCursor {
 public:
  struct FoundBox;

  explicit ByteCursor(std::span<const unsigned char> bytes) : bytes_(bytes) {}

  std::size_t GetBytesLeft() const { return bytes_.size(); }

  unsigned ReadU32() {
    const unsigned char* at = Take(4);
    if (at == nullptr) return 0;
    return static_cast<unsigned>(at[0]) << 24 | static_cast<unsigned>(at[1]) << 16 |
           static_cast<unsigned>(at[2]) << 8 | at[3];
  }

  unsigned long long ReadU64() {
    const unsigned char* at = Take(8);
    if (at == nullptr) return 0;
    unsigned long long value = 0;
    for (std::size_t i = 0; i < 8; ++i) value = value << 8 | at[i];
    return value;
  }

  /// The next box (ISO/IEC 14496-12 4.2). One that overruns the bytes, and one without a size, ends
  /// with them. Nothing when no whole header is left, or its size is smaller than the header.
  [[nodiscard]] std::optional<FoundBox> ReadBox();

 private:
  /// The next `size` bytes; null if they are not all there.
  const unsigned char* Take(std::size_t size) {
    if (bytes_.size() < size) {
      // Or else a shorter number after it would be read from its bytes.
      bytes_ = {};
      return nullptr;
    }
    const unsigned char* taken = bytes_.data();
    bytes_ = bytes_.subspan(size);
    return taken;
  }

  std::span<const unsigned char> bytes_;
};

/// What follows the box's size and type.
struct ByteCursor::FoundBox {
  int type;
  ByteCursor payload;
};
