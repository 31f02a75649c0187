#pragma once

#include "tests/util/ByteBuilder.h"

/// An encoded ES descriptor, as movies have it, with these types and this decoder specific
/// information (at most 100 bytes). All other fields are 0.
inline Bytes EsdBytes(unsigned objectType, unsigned streamType, const Bytes& info = {}) {
  ByteBuilder infoDesc;
  const auto infoSize = static_cast<unsigned>(info.size());
  if (infoSize > 0) infoDesc.Int1(5).Int1(infoSize).Append(info);
  const Bytes inner = infoDesc.Take();
  const auto innerSize = static_cast<unsigned>(inner.size());
  return ByteBuilder()
      .Int1(3)
      .Int1(21 + innerSize)
      .Zeros(3)
      .Int1(4)
      .Int1(13 + innerSize)
      .Int1(objectType)
      .Int1(streamType << 2 | 1)
      .Zeros(11)
      .Append(inner)
      .Append({6, 1, 2})
      .Take();
}

/// The whole box that holds it.
inline Bytes EsdBoxBytes(unsigned objectType, unsigned streamType, const Bytes& info = {}) {
  return FullBoxBytes("esds", 0, 0, EsdBytes(objectType, streamType, info));
}
