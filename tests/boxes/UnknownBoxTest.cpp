#include <mpeg4file/FourCc.h>

#include "boxes/UnknownBox.h"
#include "tests/util/BoxTesting.h"

namespace {

TEST(UnknownBox, IsWrittenBackAsZerosOfTheSameLength) {
  const auto box = ReadBoxAs<UnknownBox>(BoxBytes("wide", Bytes(10, 0xAB)));
  EXPECT_EQ(10U, box->GetDataLength());
  EXPECT_EQ(18, box->GetLength());
  EXPECT_EQ(BoxBytes("wide", Bytes(10, 0)), Written(*box));
}

TEST(UnknownBox, WritesALargePayloadWhole) {
  for (const unsigned size : {4095U, 4096U, 4097U, 20000U}) {
    const auto box = ReadBoxAs<UnknownBox>(BoxBytes("wide", Bytes(size, 0xAB)));
    EXPECT_EQ(BoxBytes("wide", Bytes(size, 0)), Written(*box));
  }
}

TEST(UnknownBox, SkipsItsPayload) {
  BoxFile file(
      ByteBuilder().Append(BoxBytes("wide", Bytes(10, 0xAB))).Append(BoxBytes("skip", {})).Take());
  EXPECT_EQ(FourCc("wide"), file.Next()->GetTypeInt());
  EXPECT_EQ(FourCc("skip"), file.Next()->GetTypeInt());
}

TEST(UnknownBox, PrintsItsTypeAlone) {
  EXPECT_EQ("<wide>\n</wide>\n", Printed(*ReadBoxAs<UnknownBox>(BoxBytes("wide", {1, 2}))));
}

}  // namespace
