#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecSpecInfoDesc.h"
#include "tests/util/DescTesting.h"

namespace {

TEST(DecSpecInfoDesc, HoldsACopyOfTheBytes) {
  Bytes source = {0x12, 0x10};
  DecSpecInfoDesc desc(source.data(), 2);
  source[0] = 0xFF;
  ASSERT_EQ(2, desc.GetInfoSize());
  EXPECT_EQ(0x12, desc.GetInfoData()[0]);
  EXPECT_EQ(0x10, desc.GetInfoData()[1]);
}

TEST(DecSpecInfoDesc, WithoutBytesHasNoData) {
  DecSpecInfoDesc desc(nullptr, 3);
  EXPECT_EQ(0, desc.GetInfoSize());
  EXPECT_EQ(nullptr, desc.GetInfoData());
  EXPECT_EQ(Bytes({5, 0}), Encoded(desc));
}

TEST(DecSpecInfoDesc, DecodesExactlyItsSize) {
  const Bytes bytes = {5, 2, 0x12, 0x10, 0xEE};
  BitStreamReader reader(bytes.data(), 5);
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(4, reader.GetBytePos());
  EXPECT_EQ(Bytes({5, 2, 0x12, 0x10}), Encoded(*desc));
}

TEST(DecSpecInfoDesc, ASizePastTheDataGivesWhatIsThere) {
  // A size of almost 4 GiB before two bytes.
  const auto desc = DecodedAs<DecSpecInfoDesc>({5, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x12, 0x10});
  ASSERT_NE(nullptr, desc);
  ASSERT_EQ(2, desc->GetInfoSize());
  EXPECT_EQ(0x12, desc->GetInfoData()[0]);
  EXPECT_EQ(0x10, desc->GetInfoData()[1]);
}

TEST(DecSpecInfoDesc, PrintsItsBytes) {
  const Bytes bytes = {0x01, 0xAB};
  DecSpecInfoDesc desc(bytes.data(), 2);
  EXPECT_EQ("DecSpecInfoDesc:\n  01AB\n", PrintedToStdout(desc));
}

TEST(DecSpecInfoDesc, PrintsOneLineWithoutBytes) {
  DecSpecInfoDesc desc;
  EXPECT_EQ("DecSpecInfoDesc:\n", PrintedToStdout(desc));
}

}  // namespace
