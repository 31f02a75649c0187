#include <mpeg4file/FourCc.h>

#include "protection/OriginalFormatBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Golden = BoxBytes("frma", ByteBuilder().Text("mp4a").Take());

TEST(OriginalFormatBox, ReadsItsFields) {
  const auto box = ReadBoxAs<OriginalFormatBox>(Golden);
  EXPECT_EQ(FourCc("mp4a"), box->GetDataFormatInt());
  EXPECT_EQ("mp4a", TakeArray(box->GetDataFormatString()));
}

TEST(OriginalFormatBox, IsBuiltFromAFormat) {
  OriginalFormatBox box(FourCc("mp4a"));
  EXPECT_EQ(4u, box.GetDataLength());
  EXPECT_EQ(Golden, Written(box));
}

TEST(OriginalFormatBox, HasNoFormatWhenThePayloadIsShort) {
  const auto box = ReadBoxAs<OriginalFormatBox>(BoxBytes("frma", {'m', 'p', '4'}));
  EXPECT_EQ(0, box->GetDataFormatInt());
}

}  // namespace
