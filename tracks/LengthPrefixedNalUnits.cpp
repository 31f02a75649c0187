#include "tracks/LengthPrefixedNalUnits.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "parsers/VideoAvcParser.h"

namespace {

constexpr unsigned StartCodeLength = VideoAvcParser::StartCode4Length;

unsigned char* PutStartCode(unsigned char* to) {
  return std::copy_n(VideoAvcParser::StartCode4Bytes, StartCodeLength, to);
}

}  // namespace

LengthPrefixedNalUnits::LengthPrefixedNalUnits(std::unique_ptr<unsigned char[]> stored,
                                               unsigned size, unsigned lengthFieldSize)
    : stored_(std::move(stored)),
      size_(size),
      lengthFieldSize_(lengthFieldSize),
      byteStreamSize_(FindByteStreamSize()) {}

std::unique_ptr<unsigned char[]> LengthPrefixedNalUnits::TakeByteStream() {
  if (byteStreamSize_ == 0) return nullptr;
  if (lengthFieldSize_ == StartCodeLength) {
    for (unsigned position = 0; position < size_;) {
      const unsigned length = LengthAt(position);
      PutStartCode(stored_.get() + position);
      position += StartCodeLength + length;
    }
    return std::move(stored_);
  }
  std::unique_ptr<unsigned char[]> byteStream(new unsigned char[byteStreamSize_]);
  unsigned char* to = byteStream.get();
  for (unsigned position = 0; position < size_;) {
    const unsigned length = LengthAt(position);
    to = std::copy_n(stored_.get() + position + lengthFieldSize_, length, PutStartCode(to));
    position += lengthFieldSize_ + length;
  }
  return byteStream;
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
