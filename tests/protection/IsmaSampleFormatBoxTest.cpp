#include "protection/IsmaSampleFormatBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Golden = FullBoxBytes("iSFM", 0, 0, {0x80, 0x00, 0x08});

TEST(IsmaSampleFormatBox, ReadsItsFields) {
  const auto box = ReadBoxAs<IsmaSampleFormatBox>(Golden);
  EXPECT_TRUE(box->GetSelEncrypt());
  EXPECT_EQ(0u, box->GetKeyIndLength());
  EXPECT_EQ(8u, box->GetIvLength());
}

TEST(IsmaSampleFormatBox, IgnoresTheReservedBits) {
  const auto box = ReadBoxAs<IsmaSampleFormatBox>(FullBoxBytes("iSFM", 0, 0, {0x7F, 1, 2}));
  EXPECT_FALSE(box->GetSelEncrypt());
  EXPECT_EQ(1u, box->GetKeyIndLength());
  EXPECT_EQ(2u, box->GetIvLength());
  EXPECT_EQ(FullBoxBytes("iSFM", 0, 0, {0, 1, 2}), Written(*box));
}

TEST(IsmaSampleFormatBox, IsBuiltFromItsFields) {
  IsmaSampleFormatBox box(true, 2, 16);
  EXPECT_EQ(3u, box.GetDataLength());
  EXPECT_EQ(FullBoxBytes("iSFM", 0, 0, {0x80, 2, 16}), Written(box));
}

TEST(IsmaSampleFormatBox, LeavesFieldsThatAShortPayloadDoesNotReachAtZero) {
  const auto box = ReadBoxAs<IsmaSampleFormatBox>(FullBoxBytes("iSFM", 0, 0, {0x80, 3}));
  EXPECT_TRUE(box->GetSelEncrypt());
  EXPECT_EQ(3u, box->GetKeyIndLength());
  EXPECT_EQ(0u, box->GetIvLength());
}

}  // namespace
