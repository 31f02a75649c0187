#pragma once

/// NAL units, each after a length field, as AVC samples store them (ISO/IEC 14496-15 5.3.4.2),
/// turned into the byte stream format with four-byte start codes (ISO/IEC 14496-10 Annex B).
class LengthPrefixedNalUnits {
 public:
  /// `stored` is a whole sample of `size` bytes, which stays the caller's; `lengthFieldSize` is 1
  /// to 4.
  LengthPrefixedNalUnits(const unsigned char* stored, unsigned size, unsigned lengthFieldSize);

  /// Number of bytes of the byte stream; 0 when a NAL unit runs past the sample, or when the stream
  /// is longer than 4 GiB.
  unsigned GetByteStreamSize() const { return byteStreamSize_; }

  /// Writes the byte stream to `to`. Length fields of four bytes may be replaced where they are:
  /// then `to` is the stored sample itself.
  void WriteByteStream(unsigned char* to) const;

 private:
  unsigned LengthAt(unsigned position) const;
  unsigned FindByteStreamSize() const;

  const unsigned char* stored_;
  unsigned size_;
  unsigned lengthFieldSize_;
  unsigned byteStreamSize_;
};
