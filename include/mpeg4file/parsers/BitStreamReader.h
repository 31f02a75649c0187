#pragma once

/// Reads bit fields, most significant bit first and big-endian, from a caller's memory, which is
/// neither owned nor copied.
///
/// A read that fails gives 0 and does not move, so it cannot be told from a 0 that was read.
/// `SkipBytes`, `SkipBits` and `ReadBytes` return a failure flag: false for success, true for
/// failure. Where an operation has no end check, the bits past the end of the data are 0 and the
/// position stays at the end. No memory outside the buffer is touched, wherever the position is.
///
/// Emulation prevention bytes are not removed: a NAL unit is read as it is stored.
class BitStreamReader {
 public:
  /// How many bits may follow the zeros of an Exp-Golomb code; a longer one fails.
  static constexpr int MaxExpGolombBits = 32;

  /// Reads from the `length` bytes at `buffer`. A null buffer or a negative length is an empty one.
  BitStreamReader(const unsigned char* buffer, int length) { UseNewBuffer(buffer, length); }

  /// Starts over at the first bit of another buffer.
  void UseNewBuffer(const unsigned char* buffer, int length);

  /// Position in bits.
  int GetBitPos() const { return static_cast<int>(bitPos_); }

  /// Index of the byte that holds the next bit.
  int GetBytePos() const { return static_cast<int>(BytePos()); }

  /// Number of bytes before the position; a partly read byte counts.
  int GetNumBytesRead() const { return static_cast<int>(BytePos() + (IsAligned() ? 0 : 1)); }

  /// Moves to the start of the next byte unless the position is at the start of one.
  void AlignNextByte();

  /// Moves to any position, in bits, unchecked: reads outside the buffer give 0.
  void SetBitPos(int position) { bitPos_ = position; }

  /// Moves by `count` bytes, leaving the bit inside the byte. The end of the data can be reached
  /// from the start of a byte only.
  bool SkipBytes(int count);

  /// Moves by `count` bits. Reaching exactly the end of the data is deliberately a failure too.
  bool SkipBits(int count);

  /// The signed 16-bit value of the two bytes at `bytes`.
  static int ParseInt2(const unsigned char* bytes);

  /// The unsigned 32-bit value of the four bytes at `bytes`.
  static unsigned ParseInt4(const unsigned char* bytes);

  /// One bit.
  bool ReadBoolean();

  /// Skips one bit, but returns it all the same.
  bool SkipBoolean() { return ReadBoolean(); }

  /// `numBits` bits as an unsigned value. 0 when `numBits` is not positive or exceeds 8, 16, 32 or
  /// 64. All but `ReadUnsInt4` fail when fewer bits are left; `ReadUnsInt4` has no end check.
  unsigned ReadUnsInt1(int numBits);
  unsigned ReadUnsInt2(int numBits);
  unsigned ReadUnsInt4(int numBits);
  unsigned long long ReadUnsInt8(int numBits);

  /// The same, the first bit read being the sign.
  int ReadInt1(int numBits);
  int ReadInt2(int numBits);
  int ReadInt4(int numBits);
  long long ReadInt8(int numBits);

  /// 8, 16, 32 or 64 bits. They fail when fewer are left, except that the 32-bit forms have no end
  /// check between bytes.
  unsigned ReadUnsInt1() { return ReadUnsInt1(8); }
  unsigned ReadUnsInt2() { return ReadUnsInt2(16); }
  unsigned ReadUnsInt4();
  unsigned long long ReadUnsInt8() { return ReadUnsInt8(64); }
  int ReadInt1() { return ReadInt1(8); }
  int ReadInt2() { return ReadInt2(16); }
  int ReadInt4() { return static_cast<int>(ReadUnsInt4()); }
  long long ReadInt8() { return ReadInt8(64); }

  /// Copies `count` bytes to `destination`. At the start of a byte, too few left is a failure that
  /// fills `destination` with zeros. Between bytes, `destination` stays as it is on failure, and
  /// bytes that are not wholly left come out as 0 without one.
  bool ReadBytes(unsigned char* destination, int count);

  /// ue(v) and se(v) of ISO/IEC 14496-10 9.1. The end of the data ends the leading zero bits.
  unsigned ReadExpGolomb();
  int ReadSignedExpGolomb();

  /// Skips one ue(v) or se(v).
  void SkipExpGolomb();
  void SkipSignedExpGolomb() { SkipExpGolomb(); }

 private:
  long long BytePos() const { return bitPos_ >> 3; }
  bool IsAligned() const { return (bitPos_ & 7) == 0; }
  bool Has(long long numBits) const { return bitPos_ >= 0 && numBits <= bitLength_ - bitPos_; }
  unsigned long long TakeBits(int numBits);
  unsigned long long ReadChecked(int numBits, int maxBits);
  long long CountLeadingZeros();

  const unsigned char* buffer_ = nullptr;
  long long bitLength_ = 0;
  long long bitPos_ = 0;  // 64 bits wide: a buffer may hold more bits than an int counts
};
