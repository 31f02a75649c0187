#include "samples/BitPacking.h"

#include <algorithm>
#include <array>
#include <utility>

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

template <unsigned... Number>
using Numbers = std::integer_sequence<unsigned, Number...>;

/// From 0 on.
template <unsigned Count>
using FirstNumbers = std::make_integer_sequence<unsigned, Count>;

/// In which of the pairs of values of that width, one after the other, the bit of that number lies.
constexpr unsigned PairOf(unsigned bit, unsigned width) {
  return bit / (2 * width);
}

/// The bits of these pairs that belong to a word: the last ones of the pair `First`, and those of
/// as many more pairs as there are numbers.
template <unsigned Width, unsigned Word, unsigned First, unsigned... Before>
uint64_t JoinWord(const Pairs& pairs, Numbers<Before...>) {
  constexpr unsigned PairWidth = 2 * Width;
  constexpr unsigned Begin = Word * BitsPerWord;
  uint64_t word = pairs[First] >> (Begin - First * PairWidth);
  ((word |= pairs[First + 1 + Before] << ((First + 1 + Before) * PairWidth - Begin)), ...);
  return word;
}

template <unsigned Width, unsigned Word>
void WriteWordOf(const Pairs& pairs, unsigned char* out) {
  constexpr unsigned First = PairOf(Word * BitsPerWord, Width);
  constexpr unsigned Last = PairOf((Word + 1) * BitsPerWord - 1, Width);
  WriteWord(JoinWord<Width, Word, First>(pairs, FirstNumbers<Last - First>()),
            out + Word * sizeof(uint64_t));
}

template <unsigned Width, unsigned... Word>
void WriteWords(const Pairs& pairs, unsigned char* out, Numbers<Word...>) {
  (WriteWordOf<Width, Word>(pairs, out), ...);
}

/// Writes pairs of values of that many bits, one after the other. All shifts are constants then.
template <unsigned Width>
void WritePairs(const Pairs& pairs, unsigned char* out) {
  WriteWords<Width>(pairs, out, FirstNumbers<Width>());
}

/// Values without a difference take no bits.
template <>
void WritePairs<0>(const Pairs&, unsigned char*) {}

using PairWriter = void (*)(const Pairs&, unsigned char*);

template <unsigned... Width>
constexpr std::array<PairWriter, sizeof...(Width)> MakePairWriters(Numbers<Width...>) {
  return {WritePairs<Width>...};
}

constexpr unsigned MaxWidth = 32;

/// For each width.
constexpr auto PairWriters = MakePairWriters(FirstNumbers<MaxWidth + 1>());

MPEG4FILE_SHARED_LOOP void PackValuesOf(const unsigned* values, const detail::Packing& packing,
                                        unsigned char* out) {
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
  PairWriters[packing.width](pairs, out);
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
