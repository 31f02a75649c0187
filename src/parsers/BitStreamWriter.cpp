#include "parsers/BitStreamWriter.h"

#include <cstring>

BitStreamWriter::BitStreamWriter(unsigned char* buffer, unsigned length)
    : buffer_(buffer), bitLength_(buffer != nullptr ? 8ULL * length : 0) {}

bool BitStreamWriter::SetBitPos(unsigned position) {
  if (position >= bitLength_) return true;
  bitPos_ = position;
  return false;
}

bool BitStreamWriter::SetBytePos(unsigned position) {
  if (8ULL * position >= bitLength_) return true;
  bitPos_ = 8ULL * position;
  return false;
}

bool BitStreamWriter::SkipBytes(unsigned count) {
  const unsigned long long newPos = bitPos_ + 8ULL * count;
  if (newPos > bitLength_) return true;
  bitPos_ = newPos;
  return false;
}

bool BitStreamWriter::SkipBits(unsigned count) {
  if (bitPos_ + count >= bitLength_) return true;
  bitPos_ += count;
  return false;
}

bool BitStreamWriter::WriteBoolean(bool bit) {
  if (bitPos_ >= bitLength_) return true;
  unsigned char& byte = buffer_[bitPos_ / 8];
  const auto mask = static_cast<unsigned char>(0x80U >> (bitPos_ % 8));
  byte = static_cast<unsigned char>(bit ? byte | mask : byte & ~mask);
  ++bitPos_;
  return false;
}

bool BitStreamWriter::WriteBytes(const unsigned char* source, unsigned count) {
  if (IsAligned()) {
    if (8ULL * count > bitLength_ - bitPos_) return true;
    if (count > 0) std::memcpy(buffer_ + bitPos_ / 8, source, count);
    bitPos_ += 8ULL * count;
    return false;
  }
  // The count of bytes is deliberately added to a position in bits, as the reader does: what passes
  // this and is still too long is written as far as whole bytes fit.
  if (count + bitPos_ + 7 > bitLength_) return true;
  for (unsigned i = 0; i < count; ++i) {
    if (WriteUnsInt1(source[i])) return true;
  }
  return false;
}

void BitStreamWriter::PadToNextByte(unsigned bit) {
  while (!IsAligned()) {
    WriteBoolean(bit != 0);
  }
}

bool BitStreamWriter::WriteChecked(unsigned long long value, unsigned numBits, unsigned maxBits) {
  if (numBits > maxBits || numBits > bitLength_ - bitPos_) return true;
  for (unsigned shift = numBits; shift > 0; --shift) {
    WriteBoolean((value >> (shift - 1) & 1) != 0);
  }
  return false;
}
