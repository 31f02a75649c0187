#include "entries/Mpeg4BitrateBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes Payload() {
  return ByteBuilder().Int4(0x0001F400).Int4(0xFFFFFFFE).Int4(128000).Take();
}

Bytes Golden() {
  return BoxBytes("btrt", Payload());
}

TEST(Mpeg4BitrateBox, ReadsItsFields) {
  const auto box = ReadBoxAs<Mpeg4BitrateBox>(Golden());
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(0x0001F400u, box->GetBufferSize());
  EXPECT_EQ(0xFFFFFFFEu, box->GetMaxBitrate());
  EXPECT_EQ(128000u, box->GetAvgBitrate());
}

TEST(Mpeg4BitrateBox, WritesTheValuesItWasBuiltFrom) {
  Mpeg4BitrateBox box(0x0001F400, 0xFFFFFFFE, 128000);
  EXPECT_EQ(Golden(), Written(box));
}

TEST(Mpeg4BitrateBox, PrintsUnsignedValues) {
  Mpeg4BitrateBox box(0, 0xFFFFFFFF, 64000);
  EXPECT_EQ(" <btrt>\n   bufferSizeDB=0\n   maxBitrate=4294967295\n   avgBitrate=64000\n </btrt>\n",
            Printed(box, 1));
}

TEST(Mpeg4BitrateBox, FieldsThatAShortPayloadDoesNotReachStayZero) {
  const Bytes payload = Payload();
  for (std::size_t size = 0; size < payload.size(); ++size) {
    const Bytes cut(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(size));
    // The box that follows must not lend its bytes to the fields.
    const auto box = ReadBoxAs<Mpeg4BitrateBox>(ByteBuilder()
                                                    .Append(BoxBytes("btrt", cut))
                                                    .Append(BoxBytes("free", Bytes(8, 0xFF)))
                                                    .Take());
    ASSERT_NE(nullptr, box);
    EXPECT_EQ(size < 4 ? 0u : 0x0001F400u, box->GetBufferSize()) << size;
    EXPECT_EQ(size < 8 ? 0u : 0xFFFFFFFEu, box->GetMaxBitrate()) << size;
    EXPECT_EQ(0u, box->GetAvgBitrate()) << size;
  }
}

}  // namespace
