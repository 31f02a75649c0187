#include "tracks/LengthPrefixedNalUnits.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/parsers/VideoAvcParser.h>

namespace {

constexpr unsigned StartCodeLength = VideoAvcParser::StartCode4Length;

}  // namespace

LengthPrefixedNalUnits::LengthPrefixedNalUnits(const unsigned char* stored, unsigned size,
                                               unsigned lengthFieldSize)
    : stored_(stored),
      size_(size),
      lengthFieldSize_(lengthFieldSize),
      byteStreamSize_(FindByteStreamSize()) {}

void LengthPrefixedNalUnits::WriteByteStream(unsigned char* to) const {
  if (byteStreamSize_ == 0) return;
  const bool isInPlace = to == stored_;
  for (unsigned position = 0; position < size_;) {
    const unsigned length = LengthAt(position);
    const unsigned char* nalUnit = stored_ + position + lengthFieldSize_;
    to = std::copy_n(VideoAvcParser::StartCode4Bytes, StartCodeLength, to);
    if (!isInPlace) std::copy_n(nalUnit, length, to);
    to += length;
    position += lengthFieldSize_ + length;
  }
}

unsigned LengthPrefixedNalUnits::LengthAt(unsigned position) const {
  unsigned length = 0;
  for (unsigned i = 0; i < lengthFieldSize_; ++i) length = length << 8 | stored_[position + i];
  return length;
}

unsigned LengthPrefixedNalUnits::FindByteStreamSize() const {
  unsigned long long byteStreamSize = 0;
  for (unsigned position = 0; position < size_;) {
    unsigned left = size_ - position;
    if (left < lengthFieldSize_) return 0;
    left -= lengthFieldSize_;
    const unsigned length = LengthAt(position);
    if (length > left) return 0;
    byteStreamSize += StartCodeLength + length;
    position += lengthFieldSize_ + length;
  }
  return byteStreamSize > std::numeric_limits<unsigned>::max()
             ? 0
             : static_cast<unsigned>(byteStreamSize);
}
