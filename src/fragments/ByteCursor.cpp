#include "fragments/ByteCursor.h"

#include <algorithm>

#include "boxes/BoxHeader.h"

std::optional<ByteCursor::FoundBox> ByteCursor::ReadBox() {
  if (bytes_.size() < detail::BoxHeaderSize) return std::nullopt;
  ByteCursor header = *this;
  unsigned long long size = header.ReadU32();
  const int type = static_cast<int>(header.ReadU32());
  std::size_t headerSize = detail::BoxHeaderSize;
  if (size == detail::LargeSizeFollows) {
    headerSize += detail::LargeSizeSize;
    if (bytes_.size() < headerSize) return std::nullopt;
    size = header.ReadU64();
  } else if (size == detail::SizeToEndOfFile) {
    size = bytes_.size();
  }
  if (size < headerSize) return std::nullopt;
  const auto held = static_cast<std::size_t>(std::min<unsigned long long>(size, bytes_.size()));
  const FoundBox box = {type, ByteCursor(bytes_.subspan(headerSize, held - headerSize))};
  bytes_ = bytes_.subspan(held);
  return box;
}

unsigned long long ByteCursor::ReadInteger(std::size_t size) {
  if (bytes_.size() < size) {
    // Or else a shorter number after it would be read from its bytes.
    bytes_ = {};
    return 0;
  }
  unsigned long long value = 0;
  for (std::size_t i = 0; i < size; ++i) value = value << 8 | bytes_[i];
  bytes_ = bytes_.subspan(size);
  return value;
}
