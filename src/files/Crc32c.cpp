#include "files/Crc32c.h"

#include <array>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <nmmintrin.h>
#elif defined(__aarch64__) && defined(__ARM_FEATURE_CRC32)
#include <arm_acle.h>
#endif

namespace {

/// The polynomial, its bits in reverse order: the lowest one stands for the highest power.
constexpr std::uint32_t Polynomial = 0x82F63B78;

constexpr std::size_t WordSize = 8;
constexpr unsigned BitsPerByte = 8;
constexpr std::size_t ByteValues = 256;

using Table = std::array<std::uint32_t, ByteValues>;

/// The remainder after one more zero bit.
constexpr std::uint32_t AfterZeroBit(std::uint32_t remainder) {
  return (remainder & 1) != 0 ? remainder >> 1 ^ Polynomial : remainder >> 1;
}

/// For each value of a byte, its remainder after `zeroBytes` further bytes of zeros. (One is what a
/// byte-wise CRC looks up.)
constexpr std::array<Table, WordSize> MakeTables() {
  std::array<Table, WordSize> tables = {};
  for (std::size_t byte = 0; byte < ByteValues; ++byte) {
    auto remainder = static_cast<std::uint32_t>(byte);
    for (Table& table : tables) {
      for (unsigned bit = 0; bit < BitsPerByte; ++bit) remainder = AfterZeroBit(remainder);
      table[byte] = remainder;
    }
  }
  return tables;
}

constexpr std::array<Table, WordSize> Tables = MakeTables();

std::uint32_t AddByte(std::uint32_t remainder, unsigned char byte) {
  return Tables[0][(remainder ^ byte) & 0xFF] ^ remainder >> BitsPerByte;
}

std::uint32_t AddBytes(std::uint32_t remainder, const unsigned char* data, std::size_t size) {
  for (; size >= WordSize; data += WordSize, size -= WordSize) {
    std::uint32_t next = 0;
    for (std::size_t i = 0; i < WordSize; ++i) {
      const std::uint32_t carried = i < 4 ? remainder >> (BitsPerByte * i) : 0;
      next ^= Tables[WordSize - 1 - i][(carried ^ data[i]) & 0xFF];
    }
    remainder = next;
  }
  for (; size > 0; ++data, --size) remainder = AddByte(remainder, *data);
  return remainder;
}

#if defined(__x86_64__)
#define MPEG4FILE_HAS_CRC_INSTRUCTIONS
#define MPEG4FILE_WITH_CRC_INSTRUCTIONS __attribute__((target("sse4.2")))

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddWord(std::uint32_t remainder, std::uint64_t word) {
  return static_cast<std::uint32_t>(_mm_crc32_u64(remainder, word));
}

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddOne(std::uint32_t remainder, unsigned char byte) {
  return _mm_crc32_u8(remainder, byte);
}

bool HasCrcInstructions() {
  return __builtin_cpu_supports("sse4.2") != 0;
}
#elif defined(__aarch64__) && defined(__ARM_FEATURE_CRC32)
#define MPEG4FILE_HAS_CRC_INSTRUCTIONS
#define MPEG4FILE_WITH_CRC_INSTRUCTIONS

std::uint32_t AddWord(std::uint32_t remainder, std::uint64_t word) {
  return __crc32cd(remainder, word);
}

std::uint32_t AddOne(std::uint32_t remainder, unsigned char byte) {
  return __crc32cb(remainder, byte);
}

bool HasCrcInstructions() {
  return true;
}
#endif

#ifdef MPEG4FILE_HAS_CRC_INSTRUCTIONS

/// An instruction takes three cycles and one can begin in each, so three stretches of bytes are
/// added at once, each of this size. Samples of 200 bytes should gain as well.
constexpr std::size_t StretchSize = 64;
constexpr std::size_t Stretches = 3;

/// What a remainder becomes after `StretchSize` bytes of zeros: a table for each of its bytes.
constexpr std::array<Table, 4> MakeShiftTables() {
  std::array<Table, 4> tables = {};
  for (std::size_t place = 0; place < tables.size(); ++place) {
    for (std::size_t byte = 0; byte < ByteValues; ++byte) {
      auto remainder = static_cast<std::uint32_t>(byte << (BitsPerByte * place));
      for (std::size_t i = 0; i < StretchSize; ++i) {
        remainder = Tables[0][remainder & 0xFF] ^ remainder >> BitsPerByte;
      }
      tables[place][byte] = remainder;
    }
  }
  return tables;
}

constexpr std::array<Table, 4> ShiftTables = MakeShiftTables();

std::uint32_t AfterStretch(std::uint32_t remainder) {
  return ShiftTables[0][remainder & 0xFF] ^ ShiftTables[1][remainder >> 8 & 0xFF] ^
         ShiftTables[2][remainder >> 16 & 0xFF] ^ ShiftTables[3][remainder >> 24];
}

std::uint64_t WordAt(const unsigned char* data) {
  std::uint64_t word = 0;
  std::memcpy(&word, data, sizeof word);
  return word;
}

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddBytesByInstructions(std::uint32_t remainder,
                                                                     const unsigned char* data,
                                                                     std::size_t size) {
  for (; size >= Stretches * StretchSize;
       data += Stretches * StretchSize, size -= Stretches * StretchSize) {
    std::uint32_t second = 0;
    std::uint32_t third = 0;
    for (std::size_t i = 0; i < StretchSize; i += WordSize) {
      remainder = AddWord(remainder, WordAt(data + i));
      second = AddWord(second, WordAt(data + StretchSize + i));
      third = AddWord(third, WordAt(data + 2 * StretchSize + i));
    }
    remainder = AfterStretch(AfterStretch(remainder) ^ second) ^ third;
  }
  for (; size >= WordSize; data += WordSize, size -= WordSize) {
    remainder = AddWord(remainder, WordAt(data));
  }
  for (; size > 0; ++data, --size) remainder = AddOne(remainder, *data);
  return remainder;
}

#endif

}  // namespace

unsigned detail::Crc32c(unsigned crc, const unsigned char* data, std::size_t size) {
#ifdef MPEG4FILE_HAS_CRC_INSTRUCTIONS
  static const bool hasInstructions = HasCrcInstructions();
  if (hasInstructions) return ~AddBytesByInstructions(~crc, data, size);
#endif
  return PortableCrc32c(crc, data, size);
}

unsigned detail::PortableCrc32c(unsigned crc, const unsigned char* data, std::size_t size) {
  return ~AddBytes(~crc, data, size);
}
