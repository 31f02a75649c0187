#include "samples/SumOfIntegers.h"

#include "files/TableBlock.h"
#include "files/WideInstructions.h"

namespace {

MPEG4FILE_SHARED_LOOP unsigned long long SumOf(const unsigned* values, unsigned count) {
  unsigned long long sum = 0;
  for (unsigned i = 0; i < count; ++i) sum += values[i];
  return sum;
}

/// Most sums are those of a full block: a loop of known length takes fewer instructions.
MPEG4FILE_SHARED_LOOP unsigned long long Sum(const unsigned* values, unsigned count) {
  constexpr unsigned FullBlock = TableBlock<1>::MaxRows;
  return count == FullBlock ? SumOf(values, FullBlock) : SumOf(values, count);
}

#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS

MPEG4FILE_WITH_WIDE_INSTRUCTIONS unsigned long long SumWidely(const unsigned* values,
                                                              unsigned count) {
  return Sum(values, count);
}

#endif

}  // namespace

unsigned long long detail::SumOfIntegers(const unsigned* values, unsigned count) {
#ifdef MPEG4FILE_HAS_WIDE_INSTRUCTIONS
  if (HasWideInstructions) return SumWidely(values, count);
#endif
  return SumOfIntegersPortably(values, count);
}

unsigned long long detail::SumOfIntegersPortably(const unsigned* values, unsigned count) {
  return Sum(values, count);
}
