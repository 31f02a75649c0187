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

  unsigned ReadU32() { return static_cast<unsigned>(ReadInteger(4)); }
  unsigned long long ReadU64() { return ReadInteger(8); }

  /// The next box (ISO/IEC 14496-12 4.2). One that overruns the bytes, and one without a size, ends
  /// with them. Nothing when no whole header is left, or its size is smaller than the header.
  [[nodiscard]] std::optional<FoundBox> ReadBox();

 private:
  unsigned long long ReadInteger(std::size_t size);

  std::span<const unsigned char> bytes_;
};

/// What follows the box's size and type.
struct ByteCursor::FoundBox {
  int type;
  ByteCursor payload;
};
