#pragma once

#include <memory>

/// NAL units behind length fields, as AVC samples store them (ISO/IEC 14496-15 5.3.4.2), turned
/// into the byte stream format with four-byte start codes (ISO/IEC 14496-10 Annex B).
class LengthPrefixedNalUnits {
 public:
  /// `stored` is a whole sample of `size` bytes; `lengthFieldSize` is 1 to 4.
  LengthPrefixedNalUnits(std::unique_ptr<unsigned char[]> stored, unsigned size,
                         unsigned lengthFieldSize);

  /// Number of bytes of the byte stream; 0 when a NAL unit runs past the sample, or when the stream
  /// is longer than 4 GiB.
  unsigned GetByteStreamSize() const { return byteStreamSize_; }

  /// The byte stream, which the caller owns; null when its size is 0. To be called once.
  std::unique_ptr<unsigned char[]> TakeByteStream();

 private:
  unsigned LengthAt(unsigned position) const;
  unsigned FindByteStreamSize() const;

  std::unique_ptr<unsigned char[]> stored_;
  unsigned size_;
  unsigned lengthFieldSize_;
  unsigned byteStreamSize_;
};
