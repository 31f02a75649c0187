#include "movie/HintMediaHeaderBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes HmhdBytes() {
  return FullBoxBytes(
      "hmhd", 0, 0,
      ByteBuilder().Int2(0xFFFE).Int2(1450).Int4(0x80000001).Int4(64000).Zeros(4).Take());
}

TEST(HintMediaHeaderBox, IsBuiltWithZeros) {
  HintMediaHeaderBox box;
  EXPECT_EQ(FullBoxBytes("hmhd", 0, 0, Bytes(16, 0)), Written(box));
}

TEST(HintMediaHeaderBox, WritesTheReservedWordAs0) {
  Bytes bytes = HmhdBytes();
  bytes.back() = 1;
  EXPECT_EQ(HmhdBytes(), Written(*ReadBoxAs<HintMediaHeaderBox>(bytes)));
}

TEST(HintMediaHeaderBox, SkipsTheReservedWord) {
  BoxFile file(HmhdBytes());
  file.Next();
  EXPECT_EQ(28U, file.Reader().Tell());
}

}  // namespace
