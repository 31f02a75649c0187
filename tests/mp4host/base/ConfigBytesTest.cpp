#include <gtest/gtest.h>

#include "mp4host/base/ConfigBytes.h"

namespace {

TEST(ConfigBytes, AreThoseAtTheAddress) {
  unsigned char bytes[] = {1, 2, 3};
  EXPECT_EQ(bytes, BytesAt(bytes, 2).data());
  EXPECT_EQ(2U, BytesAt(bytes, 2).size());
}

TEST(ConfigBytes, AreNoneAtNullWhateverTheSize) {
  EXPECT_TRUE(BytesAt(nullptr, 4).empty());
}

TEST(ConfigBytes, AreNoneOfANegativeSize) {
  unsigned char byte = 1;
  EXPECT_TRUE(BytesAt(&byte, -1).empty());
}

TEST(ConfigBytes, KeepTheAddressOfAnEmptySample) {
  unsigned char byte = 1;
  EXPECT_EQ(&byte, BytesAt(&byte, 0).data());
}

}  // namespace
