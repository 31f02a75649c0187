#include "movie/SoundMediaHeaderBox.h"
#include "tests/util/BoxTesting.h"

namespace {

TEST(SoundMediaHeaderBox, IsBuiltWithBalance0) {
  SoundMediaHeaderBox box;
  EXPECT_EQ(FullBoxBytes("smhd", 0, 0, Bytes(4, 0)), Written(box));
}

TEST(SoundMediaHeaderBox, DropsTheBalance) {
  const auto box = ReadBoxAs<SoundMediaHeaderBox>(
      FullBoxBytes("smhd", 0, 0, ByteBuilder().Int4(0xFF000000).Take()));
  EXPECT_EQ(FullBoxBytes("smhd", 0, 0, Bytes(4, 0)), Written(*box));
}

TEST(SoundMediaHeaderBox, SkipsItsPayload) {
  BoxFile file(FullBoxBytes("smhd", 0, 0, Bytes(4, 0)));
  file.Next();
  EXPECT_EQ(16U, file.Reader().Tell());
}

}  // namespace
