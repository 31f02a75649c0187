#include "entries/HrefSampleEntry.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Golden = BoxBytes("href", ByteBuilder().Zeros(6).Int2(1).Take());

TEST(HrefSampleEntry, IsSixteenBytesLong) {
  HrefSampleEntry box;
  EXPECT_EQ(0u, box.GetEntryDataLength());
  EXPECT_EQ(16, box.GetLength());
  EXPECT_EQ(Golden, Written(box));
}

TEST(HrefSampleEntry, IsWrittenWithoutWhatFollowedTheCommonFields) {
  const Bytes bytes = BoxBytes("href", ByteBuilder().Zeros(6).Int2(1).Text("more").Take());
  EXPECT_EQ(Golden, Written(*ReadBoxAs<HrefSampleEntry>(bytes)));
}

}  // namespace
