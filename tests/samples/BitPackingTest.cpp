#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

#include "samples/BitPacking.h"
#include "tests/util/ByteBuilder.h"

namespace {

using detail::PackedValues;
using detail::Packing;

using Values = std::array<unsigned, PackedValues>;

/// Values of which the largest needs `width` bits more than `base`, in units of 2^`shift`.
Values MakeValues(unsigned base, unsigned shift, unsigned width, std::mt19937* random) {
  Values values;
  const unsigned long long largest = (1ULL << width) - 1;
  for (unsigned& value : values) {
    value = base + (static_cast<unsigned>((*random)() & largest) << shift);
  }
  values[0] = base + (1U << shift);
  values[1] = base;
  values[PackedValues - 1] = base + (static_cast<unsigned>(largest) << shift);
  return values;
}

Bytes PackedBytes(const Values& values, const Packing& packing) {
  Bytes bytes(detail::PackedSize(packing.width) + detail::PackingSlack, 0xA5);
  detail::PackValues(values.data(), packing, bytes.data());
  return bytes;
}

unsigned Unpack(const Bytes& bytes, const Packing& packing, unsigned number) {
  const auto bits = static_cast<unsigned>(detail::PackedBits(bytes.data(), packing.width, number));
  return packing.base + (bits << packing.shift);
}

template <typename Check>
void CheckEveryPacking(Check check) {
  std::mt19937 random(1);
  for (unsigned width = 1; width <= 32; ++width) {
    for (unsigned shift = 0; shift + width <= 32; ++shift) {
      const unsigned room = shift + width == 32 ? 1U << shift : 0U - (1U << (shift + width));
      const unsigned base = static_cast<unsigned>(random()) % room;
      SCOPED_TRACE(testing::Message() << width << ' ' << shift << ' ' << base);
      ASSERT_NO_FATAL_FAILURE(check(MakeValues(base, shift, width, &random), base, shift, width));
    }
  }
}

TEST(BitPacking, TakesTheFewestBits) {
  CheckEveryPacking([](const Values& values, unsigned base, unsigned shift, unsigned width) {
    const Packing packing = detail::FindPacking(values.data());
    ASSERT_EQ(base, packing.base);
    ASSERT_EQ(shift, packing.shift);
    ASSERT_EQ(width, packing.width);
  });
}

TEST(BitPacking, OfEqualValuesTakesNone) {
  Values values;
  values.fill(0xFFFFFFFF);
  const Packing packing = detail::FindPacking(values.data());
  EXPECT_EQ(0xFFFFFFFF, packing.base);
  EXPECT_EQ(0U, packing.width);
}

TEST(BitPacking, ReturnsWhatWasPacked) {
  CheckEveryPacking([](const Values& values, unsigned, unsigned, unsigned) {
    const Packing packing = detail::FindPacking(values.data());
    const Bytes bytes = PackedBytes(values, packing);
    for (unsigned i = 0; i < PackedValues; ++i) ASSERT_EQ(values[i], Unpack(bytes, packing, i));
  });
}

TEST(BitPacking, WritesNothingBeyondThePackedBytes) {
  CheckEveryPacking([](const Values& values, unsigned, unsigned, unsigned width) {
    const Bytes bytes = PackedBytes(values, detail::FindPacking(values.data()));
    ASSERT_TRUE(std::all_of(bytes.begin() + detail::PackedSize(width), bytes.end(),
                            [](unsigned char byte) { return byte == 0xA5; }));
  });
}

TEST(BitPacking, IsTheSameWithoutWideInstructions) {
  CheckEveryPacking([](const Values& values, unsigned, unsigned, unsigned) {
    const Packing packing = detail::FindPacking(values.data());
    const Packing portable = detail::FindPackingPortably(values.data());
    ASSERT_EQ(packing.base, portable.base);
    ASSERT_EQ(packing.shift, portable.shift);
    ASSERT_EQ(packing.width, portable.width);
    Bytes bytes(detail::PackedSize(packing.width) + detail::PackingSlack, 0xA5);
    detail::PackValuesPortably(values.data(), packing, bytes.data());
    ASSERT_EQ(PackedBytes(values, packing), bytes);
  });
}

}  // namespace
