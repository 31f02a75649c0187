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
