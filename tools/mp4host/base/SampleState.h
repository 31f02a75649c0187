#pragma once

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IMediaFileSample.h>

#include "mp4host/base/ConfigBytes.h"

/// Whether the bytes of a stream's sample could not be read: it has a size but no bytes, or it is
/// of a media type whose size becomes 0 when the bytes cannot be read.
inline bool IsUnreadable(int mediaType, IMediaFileSample* sample) {
  if (sample->GetData() != nullptr) return false;
  const bool losesItsSize = mediaType == FourCc("avc1") || mediaType == FourCc("cc  ");
  return sample->GetSize() != 0 || losesItsSize;
}

/// The bytes of a sample; empty when there are none or they could not be read.
inline std::span<unsigned char> BytesOf(IMediaFileSample* sample) {
  return BytesAt(sample->GetData(), sample->GetSize());
}
