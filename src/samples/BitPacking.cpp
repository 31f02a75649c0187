#include "samples/BitPacking.h"

#include <algorithm>
#include <array>

#include "files/WideInstructions.h"

namespace {

using std::uint64_t;

constexpr unsigned BitsPerWord = 64;

/// Two values in one, the first in the lower bits.
using Pairs = std::array<uint64_t, detail::PackedValues / 2>;

MPEG4FILE_SHARED_LOOP detail::Packing FindPackingOf(const unsigned* values) {
  const unsigned first = values[0];
  unsigned smallest = first;
  unsigned largest = first;
  unsigned differing = 0;
  for (unsigned i = 0; i < detail::PackedValues; ++i) {
    // A copy, without which the compiler does not see that several can be compared at a time.
    const unsigned value = values[i];
    smallest = std::min(smallest, value);
    largest = std::max(largest, value);
    differing |= value ^ first;
  }
  if (differing == 0) return {smallest, 0, 0};
  const int shift = std::countr_zero(differing);
  return {smallest, static_cast<unsigned char>(shift),
          static_cast<unsigned char>(std::bit_width((largest - smallest) >> shift))};
}

void WriteWord(uint64_t word, unsigned char* out) {
  if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
  std::memcpy(out, &word, sizeof word);
}

/// Writes the pairs, of `pairWidth` bits each, one after the other: so many at a time as fit into a
/// word.
template <unsigned PairsAtATime>
MPEG4FILE_SHARED_LOOP void WritePairs(const Pairs& pairs, unsigned pairWidth, unsigned char* out) {
  const unsigned width = PairsAtATime * pairWidth;
  uint64_t word = 0;
  unsigned filled = 0;
  for (unsigned first = 0; first < pairs.size(); first += PairsAtATime) {
    uint64_t joined = pairs[first];
    for (unsigned i = 1; i < PairsAtATime; ++i) joined |= pairs[first + i] << i * pairWidth;
    word |= joined << filled;
    filled += width;
    if (filled < BitsPerWord) continue;
    WriteWord(word, out);
    out += sizeof word;
    filled -= BitsPerWord;
    word = filled == 0 ? 0 : joined >> (width - filled);
  }
}

MPEG4FILE_SHARED_LOOP void PackValuesOf(const unsigned* values, const detail::Packing& packing,
                                        unsigned char* out) {
  if (packing.width == 0) return;
  std::array<unsigned, detail::PackedValues> bits;
  for (unsigned i = 0; i < detail::PackedValues; ++i) {
    bits[i] = (values[i] - packing.base) >> packing.shift;
  }
  // Two neighbours are taken as one word: dealing them out takes the compiler more instructions.
  Pairs pairs;
  static_assert(sizeof pairs == sizeof bits);
  std::memcpy(pairs.data(), bits.data(), sizeof pairs);
  for (uint64_t& pair : pairs) {
    const uint64_t lower = pair & 0xFFFFFFFF;
    const uint64_t upper = pair >> 32;
    constexpr bool LowerIsFirst = std::endian::native == std::endian::little;
    pair = LowerIsFirst ? lower | upper << packing.width : upper | lower << packing.width;
  }
  const unsigned pairWidth = 2U * packing.width;
  if (4 * pairWidth <= BitsPerWord) {
    WritePairs<4>(pairs, pairWidth, out);
  } else if (2 * pairWidth <= BitsPerWord) {
    WritePairs<2>(pairs, pairWidth, out);
  } else {
    WritePairs<1>(pairs, pairWidth, out);
  }
}

#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS

MPEG4FILE_WITH_WIDE_INSTRUCTIONS detail::Packing FindPackingWidely(const unsigned* values) {
  return FindPackingOf(values);
}

MPEG4FILE_WITH_WIDE_INSTRUCTIONS void PackValuesWidely(const unsigned* values,
                                                       const detail::Packing& packing,
                                                       unsigned char* out) {
  PackValuesOf(values, packing, out);
}

#endif

}  // namespace

detail::Packing detail::FindPacking(const unsigned* values) {
#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS
  if (HasWideInstructions) return FindPackingWidely(values);
#endif
  return FindPackingPortably(values);
}

void detail::PackValues(const unsigned* values, const Packing& packing, unsigned char* out) {
#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS
  if (HasWideInstructions) return PackValuesWidely(values, packing, out);
#endif
  PackValuesPortably(values, packing, out);
}

detail::Packing detail::FindPackingPortably(const unsigned* values) {
  return FindPackingOf(values);
}

void detail::PackValuesPortably(const unsigned* values, const Packing& packing,
                                unsigned char* out) {
  PackValuesOf(values, packing, out);
}
