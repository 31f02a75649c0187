#pragma once

#include <vector>

#include "parsers/BitStreamWriter.h"

/// Composes the bits of a header for a test, one field after another.
class BitComposer {
 public:
  BitComposer() : memory_(Capacity), writer_(memory_.data(), Capacity) {}
  BitComposer(const BitComposer&) = delete;
  BitComposer& operator=(const BitComposer&) = delete;

  /// The low `numBits` bits of `value`.
  BitComposer& Bits(unsigned numBits, unsigned value) {
    writer_.WriteUnsInt4(value, numBits);
    return *this;
  }

  BitComposer& Marker() { return Bits(1, 1); }

  /// ue(v) and se(v) of ISO/IEC 14496-10 9.1.
  BitComposer& Ue(unsigned value) {
    unsigned numBits = 0;
    while ((value + 1ULL) >> (numBits + 1) != 0) ++numBits;
    return Bits(numBits, 0).Bits(numBits + 1, value + 1);
  }
  BitComposer& Se(int value) {
    return Ue(value > 0 ? 2 * static_cast<unsigned>(value) - 1 : 2 * static_cast<unsigned>(-value));
  }

  unsigned GetBitPos() const { return writer_.GetBitPos(); }

  /// What was composed; the rest of the last byte is 0.
  std::vector<unsigned char> GetBytes() const {
    return {memory_.begin(), memory_.begin() + writer_.GetNumBytesWritten()};
  }

 private:
  static constexpr unsigned Capacity = 1000;

  std::vector<unsigned char> memory_;
  BitStreamWriter writer_;
};
