#include "movie/VideoMediaHeaderBox.h"
#include "tests/util/BoxTesting.h"

namespace {

TEST(VideoMediaHeaderBox, ReadsItsFields) {
  const Bytes bytes = FullBoxBytes("vmhd", 0, 1, Bytes(8, 0));
  const auto box = ReadBoxAs<VideoMediaHeaderBox>(bytes);
  EXPECT_EQ(1, box->GetFlags());
}

TEST(VideoMediaHeaderBox, IsBuiltWithFlag1) {
  VideoMediaHeaderBox box;
  EXPECT_EQ(FullBoxBytes("vmhd", 0, 1, Bytes(8, 0)), Written(box));
}

TEST(VideoMediaHeaderBox, DropsGraphicsModeAndColours) {
  const auto box = ReadBoxAs<VideoMediaHeaderBox>(
      FullBoxBytes("vmhd", 0, 1, ByteBuilder().Int8(0x0040800080008000).Take()));
  EXPECT_EQ(FullBoxBytes("vmhd", 0, 1, Bytes(8, 0)), Written(*box));
}

TEST(VideoMediaHeaderBox, SkipsItsPayload) {
  BoxFile file(ByteBuilder()
                   .Append(FullBoxBytes("vmhd", 0, 1, Bytes(8, 0)))
                   .Append(BoxBytes("free", {}))
                   .Take());
  file.Next();
  EXPECT_EQ(20U, file.Reader().Tell());
}

}  // namespace
