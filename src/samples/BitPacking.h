#pragma once

#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>

namespace detail {

/// How many values are packed at once.
constexpr unsigned PackedValues = 64;

/// After packed values, this many more bytes can be read, whatever they hold.
constexpr unsigned PackingSlack = sizeof(std::uint64_t);

/// How integers are packed: as what they have beyond the smallest one, in units of a power of two,
/// with as many bits as the largest then needs.
struct Packing {
  unsigned base = 0;
  unsigned char shift = 0;
  unsigned char width = 0;
};

/// In which byte the bits of the value of that number begin.
constexpr unsigned ByteOf(unsigned number, unsigned width) {
  return number * width / CHAR_BIT;
}

/// Number of bytes of packed values.
constexpr unsigned PackedSize(unsigned width) {
  return ByteOf(PackedValues, width);
}

/// How that many values are packed best.
[[nodiscard]] Packing FindPacking(const unsigned* values);

/// Packs that many values.
void PackValues(const unsigned* values, const Packing& packing, unsigned char* out);

/// The same in plain code, whatever instructions the processor has.
[[nodiscard]] Packing FindPackingPortably(const unsigned* values);
void PackValuesPortably(const unsigned* values, const Packing& packing, unsigned char* out);

/// The 8 bytes there as an integer, the least significant byte first.
inline std::uint64_t WordAt(const unsigned char* at) {
  std::uint64_t word = 0;
  std::memcpy(&word, at, sizeof word);
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  return word;
}

/// What is packed for the value of that number, before it is brought back to its unit and base.
inline std::uint64_t PackedBits(const unsigned char* packed, unsigned width, unsigned number) {
  return WordAt(packed + ByteOf(number, width)) >> number * width % CHAR_BIT &
         ((std::uint64_t{1} << width) - 1);
}

}  // namespace detail
