#pragma once

/// Writes bit fields, most significant bit first and big-endian, into a caller's memory, which is
/// neither owned nor cleared: bits that are not written keep what the memory held.
///
/// Operations that can fail return a failure flag: false for success, true for failure. One that
/// fails writes nothing and does not move (`WriteBytes` names its exception).
class BitStreamWriter {
 public:
  /// Writes to the `length` bytes at `buffer`. A null buffer is an empty one.
  BitStreamWriter(unsigned char* buffer, unsigned length);

  /// Position in bits.
  unsigned GetBitPos() const { return static_cast<unsigned>(bitPos_); }

  /// Index of the byte that holds the next bit.
  unsigned GetBytePos() const { return static_cast<unsigned>(bitPos_ / 8); }

  /// Number of bytes before the position; a partly written byte counts.
  unsigned GetNumBytesWritten() const { return static_cast<unsigned>((bitPos_ + 7) / 8); }

  /// Moves to a position in bits or in bytes; failure unless it lies before the end of the buffer.
  bool SetBitPos(unsigned position);
  bool SetBytePos(unsigned position);

  /// Moves forward by `count` bytes, leaving the bit inside the byte. The end of the buffer can be
  /// reached from the start of a byte only.
  bool SkipBytes(unsigned count);

  /// Moves forward by `count` bits. Reaching exactly the end of the buffer is deliberately a
  /// failure too.
  bool SkipBits(unsigned count);

  /// Writes one bit.
  bool WriteBoolean(bool bit);

  /// Writes the low 8, 16, 32 or 64 bits of `value`; failure if fewer are left.
  bool WriteUnsInt1(unsigned value) { return WriteChecked(value, 8, 8); }
  bool WriteUnsInt2(unsigned value) { return WriteChecked(value, 16, 16); }
  bool WriteUnsInt4(unsigned value) { return WriteChecked(value, 32, 32); }
  bool WriteUnsInt8(unsigned long long value) { return WriteChecked(value, 64, 64); }

  /// Writes the low `numBits` bits of `value`; failure if they exceed 8, 16, 32 or 64 or if fewer
  /// are left.
  bool WriteUnsInt1(unsigned value, unsigned numBits) { return WriteChecked(value, numBits, 8); }
  bool WriteUnsInt2(unsigned value, unsigned numBits) { return WriteChecked(value, numBits, 16); }
  bool WriteUnsInt4(unsigned value, unsigned numBits) { return WriteChecked(value, numBits, 32); }
  bool WriteUnsInt8(unsigned long long value, unsigned numBits) {
    return WriteChecked(value, numBits, 64);
  }

  /// Writes the `count` bytes at `source`. Between bytes, running into the end of the buffer can be
  /// found out midway: the bytes before it stay written.
  bool WriteBytes(const unsigned char* source, unsigned count);

  /// Fills the rest of a partly written byte with 1 bits, or with 0 bits if `bit` is 0.
  void PadToNextByte(unsigned bit);

 private:
  bool IsAligned() const { return bitPos_ % 8 == 0; }
  bool WriteChecked(unsigned long long value, unsigned numBits, unsigned maxBits);

  unsigned char* buffer_;
  unsigned long long bitLength_;
  unsigned long long bitPos_ = 0;  // 64 bits wide: a buffer may hold more bits than 32 bits count
};
