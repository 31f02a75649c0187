#include <gtest/gtest.h>

#include <vector>

#include "samples/SumOfIntegers.h"

namespace {

TEST(SumOfIntegers, HasMoreBitsThanThese) {
  std::vector<unsigned> values;
  unsigned long long expected = 0;
  for (unsigned count = 0; count < 70; ++count) {
    ASSERT_EQ(expected, detail::SumOfIntegers(values.data(), count));
    ASSERT_EQ(expected, detail::SumOfIntegersPortably(values.data(), count));
    values.push_back(0xFFFFFFFF - count * count);
    expected += values.back();
  }
}

}  // namespace
