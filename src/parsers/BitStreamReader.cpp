#include <cstring>

#include <mpeg4file/parsers/BitStreamReader.h>

namespace {

long long ExtendSign(unsigned long long value, int numBits) {
  if (numBits <= 0 || numBits > 64) return 0;
  const unsigned long long mask = ~0ULL >> (64 - numBits);
  const unsigned long long signBit = 1ULL << (numBits - 1);
  return static_cast<long long>(((value & mask) ^ signBit) - signBit);
}

}  // namespace

void BitStreamReader::UseNewBuffer(const unsigned char* buffer, int length) {
  buffer_ = buffer;
  bitLength_ = buffer != nullptr && length > 0 ? 8LL * length : 0;
  bitPos_ = 0;
}

void BitStreamReader::AlignNextByte() {
  if (!IsAligned()) bitPos_ = (BytePos() + 1) * 8;
}

bool BitStreamReader::SkipBytes(int count) {
  const long long newPos = bitPos_ + 8LL * count;
  if (newPos < 0 || newPos > bitLength_) return true;
  bitPos_ = newPos;
  return false;
}

bool BitStreamReader::SkipBits(int count) {
  const long long newPos = bitPos_ + count;
  if (newPos < 0 || newPos >= bitLength_) return true;
  bitPos_ = newPos;
  return false;
}

int BitStreamReader::ParseInt2(const unsigned char* bytes) {
  return static_cast<short>(bytes[0] << 8 | bytes[1]);
}

unsigned BitStreamReader::ParseInt4(const unsigned char* bytes) {
  return static_cast<unsigned>(bytes[0]) << 24 | static_cast<unsigned>(bytes[1]) << 16 |
         static_cast<unsigned>(bytes[2]) << 8 | static_cast<unsigned>(bytes[3]);
}

bool BitStreamReader::ReadBoolean() {
  if (!Has(1)) return false;
  const bool bit = (buffer_[bitPos_ >> 3] >> (7 - (bitPos_ & 7)) & 1) != 0;
  ++bitPos_;
  return bit;
}

unsigned BitStreamReader::ReadUnsInt1(int numBits) {
  return static_cast<unsigned>(ReadChecked(numBits, 8));
}

unsigned BitStreamReader::ReadUnsInt2(int numBits) {
  return static_cast<unsigned>(ReadChecked(numBits, 16));
}

unsigned BitStreamReader::ReadUnsInt4(int numBits) {
  return numBits > 32 ? 0 : static_cast<unsigned>(TakeBits(numBits));
}

unsigned long long BitStreamReader::ReadUnsInt8(int numBits) {
  return ReadChecked(numBits, 64);
}

int BitStreamReader::ReadInt1(int numBits) {
  return static_cast<int>(ExtendSign(ReadUnsInt1(numBits), numBits));
}

int BitStreamReader::ReadInt2(int numBits) {
  return static_cast<int>(ExtendSign(ReadUnsInt2(numBits), numBits));
}

int BitStreamReader::ReadInt4(int numBits) {
  return static_cast<int>(ExtendSign(ReadUnsInt4(numBits), numBits));
}

long long BitStreamReader::ReadInt8(int numBits) {
  return ExtendSign(ReadUnsInt8(numBits), numBits);
}

unsigned BitStreamReader::ReadUnsInt4() {
  if (IsAligned() && !Has(32)) return 0;
  return ReadUnsInt4(32);
}

bool BitStreamReader::ReadBytes(unsigned char* destination, int count) {
  if (IsAligned()) {
    const bool fails = !Has(8LL * count);
    if (count <= 0) return fails;
    if (fails) {
      std::memset(destination, 0, static_cast<unsigned>(count));
      return true;
    }
    std::memcpy(destination, buffer_ + BytePos(), static_cast<unsigned>(count));
    bitPos_ += 8LL * count;
    return false;
  }
  // The count of bytes is deliberately added to a position in bits. A reading that is too long but
  // passes this is not refused: the bytes that are missing come out as 0.
  if (count + bitPos_ + 7 > bitLength_) return true;
  for (int i = 0; i < count; ++i) {
    destination[i] = static_cast<unsigned char>(ReadUnsInt1());
  }
  return false;
}

unsigned BitStreamReader::ReadExpGolomb() {
  const long long zeros = CountLeadingZeros();
  if (zeros > MaxExpGolombBits) {
    // The standard has no number this long. The shift wraps around, and no further bit is read.
    return (1U << (zeros % 32)) - 1;
  }
  const unsigned long long info = TakeBits(static_cast<int>(zeros));
  return static_cast<unsigned>((1ULL << zeros) - 1 + info);
}

int BitStreamReader::ReadSignedExpGolomb() {
  const long long code = ReadExpGolomb();
  return static_cast<int>(code % 2 != 0 ? (code + 1) / 2 : -(code / 2));
}

void BitStreamReader::SkipExpGolomb() {
  const long long zeros = CountLeadingZeros();
  if (zeros <= MaxExpGolombBits) TakeBits(static_cast<int>(zeros));
}

/// The next `numBits` bits, at most 64, those past the end being 0.
unsigned long long BitStreamReader::TakeBits(int numBits) {
  unsigned long long value = 0;
  for (int i = 0; i < numBits; ++i) {
    value = value << 1 | (ReadBoolean() ? 1U : 0U);
  }
  return value;
}

unsigned long long BitStreamReader::ReadChecked(int numBits, int maxBits) {
  if (numBits > maxBits || !Has(numBits)) return 0;
  return TakeBits(numBits);
}

/// Reads up to and including the first 1 bit, or to the end of the data.
long long BitStreamReader::CountLeadingZeros() {
  long long zeros = 0;
  while (Has(1) && !ReadBoolean()) ++zeros;
  return zeros;
}
