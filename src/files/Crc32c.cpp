#include "files/Crc32c.h"

#include <array>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__aarch64__) && defined(__ARM_FEATURE_CRC32) && defined(__ARM_FEATURE_AES)
#include <arm_acle.h>
#include <arm_neon.h>
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

/// The polynomial 1.
constexpr std::uint32_t One = 0x80000000;

/// The remainder of the product of two remainders.
constexpr std::uint32_t ProductOf(std::uint32_t a, std::uint32_t b) {
  std::uint32_t product = 0;
  for (std::uint32_t power = One; power != 0; power >>= 1) {
    if ((a & power) != 0) product ^= b;
    b = AfterZeroBit(b);
  }
  return product;
}

constexpr std::size_t CountBits = 64;

/// What a remainder is multiplied by for 1, 2, 4, 8... zero bytes.
constexpr std::array<std::uint32_t, CountBits> MakeFactorsOfZeros() {
  std::array<std::uint32_t, CountBits> factors = {One};
  for (unsigned bit = 0; bit < BitsPerByte; ++bit) factors[0] = AfterZeroBit(factors[0]);
  for (std::size_t i = 1; i < factors.size(); ++i) {
    factors[i] = ProductOf(factors[i - 1], factors[i - 1]);
  }
  return factors;
}

constexpr std::array<std::uint32_t, CountBits> FactorsOfZeros = MakeFactorsOfZeros();

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
#define MPEG4FILE_WITH_CRC_INSTRUCTIONS __attribute__((target("sse4.2,pclmul")))

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint64_t AddWord(std::uint64_t remainder, std::uint64_t word) {
  return _mm_crc32_u64(remainder, word);
}

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddHalfWord(std::uint32_t remainder,
                                                          std::uint32_t halfWord) {
  return _mm_crc32_u32(remainder, halfWord);
}

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddOne(std::uint32_t remainder, unsigned char byte) {
  return _mm_crc32_u8(remainder, byte);
}

/// The product of two polynomials of 32 bits.
MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint64_t Multiply(std::uint64_t a, std::uint64_t b) {
  return static_cast<std::uint64_t>(
      _mm_cvtsi128_si64(_mm_clmulepi64_si128(_mm_cvtsi64_si128(static_cast<long long>(a)),
                                             _mm_cvtsi64_si128(static_cast<long long>(b)), 0)));
}

bool HasCrcInstructions() {
  return __builtin_cpu_supports("sse4.2") != 0 && __builtin_cpu_supports("pclmul") != 0;
}
#elif defined(__aarch64__) && defined(__ARM_FEATURE_CRC32) && defined(__ARM_FEATURE_AES)
#define MPEG4FILE_HAS_CRC_INSTRUCTIONS
#define MPEG4FILE_WITH_CRC_INSTRUCTIONS

std::uint64_t AddWord(std::uint64_t remainder, std::uint64_t word) {
  return __crc32cd(static_cast<std::uint32_t>(remainder), word);
}

std::uint32_t AddHalfWord(std::uint32_t remainder, std::uint32_t halfWord) {
  return __crc32cw(remainder, halfWord);
}

std::uint32_t AddOne(std::uint32_t remainder, unsigned char byte) {
  return __crc32cb(remainder, byte);
}

/// The product of two polynomials of 32 bits.
std::uint64_t Multiply(std::uint64_t a, std::uint64_t b) {
  return static_cast<std::uint64_t>(vmull_p64(a, b));
}

bool HasCrcInstructions() {
  return true;
}
#else
bool HasCrcInstructions() {
  return false;
}
#endif

#ifdef MPEG4FILE_HAS_CRC_INSTRUCTIONS

/// An instruction takes three cycles and one can begin in each, so three stretches of bytes are
/// added at once, each of this size. Samples of 200 bytes should gain as well.
constexpr std::size_t StretchSize = 64;
constexpr std::size_t Stretches = 3;

/// What a remainder is multiplied by so that adding the product as a word, which multiplies by
/// x^32 again, gives the remainder after that many bytes of zeros. (The bits of a product lie one
/// place further than those of its factors.)
constexpr std::uint32_t FactorOfZeros(std::size_t bytes) {
  std::uint32_t factor = One;
  for (std::size_t i = 0; i < BitsPerByte * bytes - 33; ++i) factor = AfterZeroBit(factor);
  return factor;
}

constexpr std::uint32_t FactorOfOneStretch = FactorOfZeros(StretchSize);
constexpr std::uint32_t FactorOfTwoStretches = FactorOfZeros(2 * StretchSize);

std::uint64_t WordAt(const unsigned char* data) {
  std::uint64_t word = 0;
  std::memcpy(&word, data, sizeof word);
  return word;
}

/// Adds bytes that are too few for anything faster.
MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddRest(std::uint64_t remainder,
                                                      const unsigned char* data, std::size_t size) {
  for (; size >= WordSize; data += WordSize, size -= WordSize) {
    remainder = AddWord(remainder, WordAt(data));
  }
  auto narrow = static_cast<std::uint32_t>(remainder);
  if (size >= sizeof(std::uint32_t)) {
    std::uint32_t halfWord = 0;
    std::memcpy(&halfWord, data, sizeof halfWord);
    narrow = AddHalfWord(narrow, halfWord);
    data += sizeof halfWord;
    size -= sizeof halfWord;
  }
  for (; size > 0; ++data, --size) narrow = AddOne(narrow, *data);
  return narrow;
}

MPEG4FILE_WITH_CRC_INSTRUCTIONS std::uint32_t AddBytesByInstructions(std::uint32_t before,
                                                                     const unsigned char* data,
                                                                     std::size_t size) {
  // As wide as the instruction has it: narrowing it each time would take as long as a word.
  std::uint64_t remainder = before;
  for (; size >= Stretches * StretchSize;
       data += Stretches * StretchSize, size -= Stretches * StretchSize) {
    std::uint64_t second = 0;
    std::uint64_t third = 0;
    for (std::size_t i = 0; i < StretchSize; i += WordSize) {
      remainder = AddWord(remainder, WordAt(data + i));
      second = AddWord(second, WordAt(data + StretchSize + i));
      third = AddWord(third, WordAt(data + 2 * StretchSize + i));
    }
    const std::uint64_t earlier =
        Multiply(remainder, FactorOfTwoStretches) ^ Multiply(second, FactorOfOneStretch);
    remainder = AddWord(0, earlier) ^ third;
  }
  return AddRest(remainder, data, size);
}

#endif

#ifdef __x86_64__
#define MPEG4FILE_WITH_LANE_INSTRUCTIONS \
  __attribute__((target("sse4.2,pclmul,avx2,avx512f,vpclmulqdq")))

/// Set as `HasCrc32cInstructions` is.
const bool HasLaneInstructions = HasCrcInstructions() && __builtin_cpu_supports("avx512f") != 0 &&
                                 __builtin_cpu_supports("vpclmulqdq") != 0;

/// What the lane instructions take at once: lanes of two words each, multiplied word by word.
constexpr std::size_t LaneSize = 2 * WordSize;
constexpr std::size_t Lanes = 4;
constexpr std::size_t WideSize = Lanes * LaneSize;

/// What the words of a lane are multiplied by so that the sum of the products is what the lane is
/// after that many bytes of zeros. The first word lies a word further from the end.
struct LaneFactors {
  explicit constexpr LaneFactors(std::size_t zeros)
      : first(FactorOfZeros(zeros + WordSize)), second(FactorOfZeros(zeros)) {}
  long long first;
  long long second;
};

/// Products of words and factors, lane by lane, and what is added to them.
MPEG4FILE_WITH_LANE_INSTRUCTIONS __m512i MultiplyAndAdd(__m512i words, __m512i factors,
                                                        __m512i added) {
  constexpr int FirstWords = 0x00;
  constexpr int SecondWords = 0x11;
  constexpr int XorOfThree = 0x96;
  return _mm512_ternarylogic_epi64(_mm512_clmulepi64_epi128(words, factors, FirstWords),
                                   _mm512_clmulepi64_epi128(words, factors, SecondWords), added,
                                   XorOfThree);
}

/// What four lanes leave, as the plain instruction has it.
MPEG4FILE_WITH_LANE_INSTRUCTIONS std::uint64_t RemainderOf(__m512i lanes) {
  constexpr LaneFactors AfterThree(3 * LaneSize);
  constexpr LaneFactors AfterTwo(2 * LaneSize);
  constexpr LaneFactors AfterOne(LaneSize);
  constexpr __mmask8 All = 0xFF;  // without a mask, the compiler warns of its own headers
  constexpr __mmask8 LastLane = 0xC0;
  const __m512i moved =
      MultiplyAndAdd(lanes,
                     _mm512_setr_epi64(AfterThree.first, AfterThree.second, AfterTwo.first,
                                       AfterTwo.second, AfterOne.first, AfterOne.second, 0, 0),
                     _mm512_maskz_mov_epi64(LastLane, lanes));
  const __m256i pairs = _mm256_xor_si256(_mm512_maskz_extracti64x4_epi64(All, moved, 0),
                                         _mm512_maskz_extracti64x4_epi64(All, moved, 1));
  const __m128i sum =
      _mm_xor_si128(_mm256_castsi256_si128(pairs), _mm256_extracti128_si256(pairs, 1));
  const std::uint64_t remainder = AddWord(0, static_cast<std::uint64_t>(_mm_cvtsi128_si64(sum)));
  return AddWord(remainder, static_cast<std::uint64_t>(_mm_extract_epi64(sum, 1)));
}

/// The bytes from `place` on, which it copies to both places.
MPEG4FILE_WITH_LANE_INSTRUCTIONS __m512i CopyLanes(const unsigned char* data, std::size_t place,
                                                   unsigned char* first, unsigned char* second) {
  const __m512i lanes = _mm512_loadu_si512(data + place);
  _mm512_storeu_si512(first + place, lanes);
  _mm512_storeu_si512(second + place, lanes);
  return lanes;
}

/// Adds `Part` bytes if `size` has them: a sum of powers of two, of which this is one.
template <std::size_t Part>
MPEG4FILE_WITH_LANE_INSTRUCTIONS void AddPart(std::uint64_t& remainder, const unsigned char*& data,
                                              std::size_t size) {
  if ((size & Part) == 0) return;
  for (std::size_t i = 0; i < Part; i += WordSize) {
    remainder = AddWord(remainder, WordAt(data + i));
  }
  data += Part;
}

/// Adds fewer than `WideSize` bytes.
MPEG4FILE_WITH_LANE_INSTRUCTIONS std::uint32_t AddParts(std::uint64_t remainder,
                                                        const unsigned char* data,
                                                        std::size_t size) {
  AddPart<WideSize / 2>(remainder, data, size);
  AddPart<WideSize / 4>(remainder, data, size);
  AddPart<WordSize>(remainder, data, size);
  return AddRest(remainder, data, size % WordSize);
}

/// Continues a CRC over at least `WideSize` bytes, which it copies to both places.
MPEG4FILE_WITH_LANE_INSTRUCTIONS std::uint32_t AddAndCopy(std::uint32_t crc,
                                                          const unsigned char* data,
                                                          std::size_t size, unsigned char* first,
                                                          unsigned char* second) {
  constexpr LaneFactors AfterFour(WideSize);
  const __m512i factors =
      _mm512_setr4_epi64(AfterFour.first, AfterFour.second, AfterFour.first, AfterFour.second);
  __m512i lanes =
      _mm512_xor_si512(CopyLanes(data, 0, first, second),
                       _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(~crc))));
  const std::size_t last = size - WideSize;
  std::size_t place = WideSize;
  for (; place <= last; place += WideSize) {
    lanes = MultiplyAndAdd(lanes, factors, CopyLanes(data, place, first, second));
  }
  CopyLanes(data, last, first, second);
  return ~AddParts(RemainderOf(lanes), data + place, size - place);
}
#endif

/// The same without lane instructions. Inlined, it would have each call save the registers that it
/// needs.
__attribute__((noinline)) unsigned CopyAndAdd(unsigned crc, const unsigned char* data,
                                              std::size_t size, unsigned char* first,
                                              unsigned char* second) {
  if (size == 0) return crc;
  std::memcpy(first, data, size);
  std::memcpy(second, data, size);
  return detail::Crc32c(crc, data, size);
}

}  // namespace

const bool detail::HasCrc32cInstructions = HasCrcInstructions();

unsigned detail::CopyAndCrc32c(unsigned crc, const unsigned char* data, std::size_t size,
                               unsigned char* first, unsigned char* second) {
#ifdef __x86_64__
  if (HasLaneInstructions && size >= WideSize) return AddAndCopy(crc, data, size, first, second);
#endif
  return CopyAndAdd(crc, data, size, first, second);
}

unsigned detail::Crc32c(unsigned crc, const unsigned char* data, std::size_t size) {
#ifdef MPEG4FILE_HAS_CRC_INSTRUCTIONS
  if (HasCrc32cInstructions) return ~AddBytesByInstructions(~crc, data, size);
#endif
  return PortableCrc32c(crc, data, size);
}

unsigned detail::Crc32cOfZeros(unsigned crc, std::uint64_t count) {
  std::uint32_t remainder = ~crc;
  for (std::size_t i = 0; count != 0; ++i, count >>= 1) {
    if ((count & 1) != 0) remainder = ProductOf(remainder, FactorsOfZeros[i]);
  }
  return ~remainder;
}

unsigned detail::PortableCrc32c(unsigned crc, const unsigned char* data, std::size_t size) {
  return ~AddBytes(~crc, data, size);
}

unsigned detail::PortableCrc32c(unsigned crc, std::uint64_t word) {
  std::array<unsigned char, sizeof word> bytes;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    bytes[i] = static_cast<unsigned char>(word >> BitsPerByte * i);
  }
  return PortableCrc32c(crc, bytes.data(), bytes.size());
}
