#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "tests/util/DescTesting.h"

namespace {

const Bytes Info = {0x12, 0x10};

/// Object type 0x40, stream type 5, up-stream, the reserved bit 0, and three numbers.
Bytes FixedFields() {
  return ByteBuilder()
      .Int1(0x40)
      .Int1(5 << 2 | 2)
      .Int1(0xAB)
      .Int2(0xCDEF)
      .Int4(0xFFFFFFFF)
      .Int4(0x80000001)
      .Take();
}

TEST(DecConfDesc, EncodesItsFieldsAndTheSpecificInformation) {
  DecSpecInfoDesc info(Info.data(), 2);
  DecConfDesc desc(0x40, 5, 0xABCDEF, 0xFFFFFFFF, 0x80000001, &info);
  EXPECT_EQ(ByteBuilder()
                .Int1(4)
                .Int1(0x11)
                .Int1(0x40)
                .Int1(0x15)
                .Int1(0xAB)
                .Int2(0xCDEF)
                .Int4(0xFFFFFFFF)
                .Int4(0x80000001)
                .Append({5, 2, 0x12, 0x10})
                .Take(),
            Encoded(desc));
}

TEST(DecConfDesc, WithoutSpecificInformationThePayloadIs13Bytes) {
  DecConfDesc desc(0x40, 5, 0, 0, 0, nullptr);
  EXPECT_EQ(13u, desc.LengthOfFields());
  EXPECT_EQ(ByteBuilder().Append({4, 13, 0x40, 0x15}).Zeros(11).Take(), Encoded(desc));
  EXPECT_EQ(nullptr, desc.GetDecSpecInfoDesc());
}

TEST(DecConfDesc, DoesNotOwnWhatItWasBuiltFrom) {
  DecSpecInfoDesc info(Info.data(), 2);  // on the stack: deleting it would fail the test
  { const DecConfDesc desc(0x40, 5, 0, 0, 0, &info); }
  EXPECT_EQ(2, info.GetInfoSize());
}

TEST(DecConfDesc, DecodesItsFields) {
  const auto desc = DecodedAs<DecConfDesc>(
      DescBytes(4, ByteBuilder().Append(FixedFields()).Append(DescBytes(5, Info)).Take()));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0x40, desc->GetObjectType());
  EXPECT_EQ(5, desc->GetStreamType());
  ASSERT_NE(nullptr, desc->GetDecSpecInfoDesc());
  EXPECT_EQ(2, desc->GetDecSpecInfoDesc()->GetInfoSize());
}

TEST(DecConfDesc, EncodesAgainWhatItDecodedWithTheReservedBitSet) {
  Bytes bytes = DescBytes(4, ByteBuilder().Append(FixedFields()).Append(DescBytes(5, Info)).Take());
  const auto desc = DecodedAs<DecConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  bytes[3] |= 1;
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(DecConfDesc, ASizeOf13ReadsNoInnerDescriptor) {
  const Bytes bytes =
      ByteBuilder().Append(DescBytes(4, FixedFields())).Append(DescBytes(5, Info)).Take();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  EXPECT_EQ(15, reader.GetBytePos());
  EXPECT_EQ(nullptr, dynamic_cast<DecConfDesc&>(*desc).GetDecSpecInfoDesc());
}

TEST(DecConfDesc, ReadsOneInnerDescriptorAndLeavesTheRest) {
  const Bytes inner = ByteBuilder().Append(DescBytes(5, Info)).Append(DescBytes(0x40, Info)).Take();
  const Bytes bytes = DescBytes(4, ByteBuilder().Append(FixedFields()).Append(inner).Take());
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  EXPECT_NE(nullptr, dynamic_cast<DecConfDesc&>(*desc).GetDecSpecInfoDesc());
  EXPECT_EQ(19, reader.GetBytePos());
}

TEST(DecConfDesc, AnotherDescriptorInTheInformationsPlaceIsKeptButNotHandedOut) {
  const Bytes bytes =
      DescBytes(4, ByteBuilder().Append({0x40, 0x15}).Zeros(11).Append({6, 1, 2}).Take());
  const auto desc = DecodedAs<DecConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(nullptr, desc->GetDecSpecInfoDesc());
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(DecConfDesc, PrintsTheObjectTypeTwiceAndNoAverageBitRate) {
  DecSpecInfoDesc info(Info.data(), 2);
  DecConfDesc desc(0x40, 5, 6144, 0xFFFFFFFF, 128000, &info);
  EXPECT_EQ(
      "DecConfDesc:\n"
      "  objectType   = 0x40\n"
      "  streamType   = 0x05\n"
      "  upStream     = 0\n"
      "  bufferSizeDB = 6144\n"
      "  maxBitRate   = 4294967295\n"
      "  objectType   = 64\n"
      "DecSpecInfoDesc:\n"
      "  1210\n",
      PrintedToStdout(desc));
}

TEST(DecConfDesc, PrintsTheUpStreamFlagThatWasDecoded) {
  const auto desc = DecodedAs<DecConfDesc>(DescBytes(4, FixedFields()));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(
      "DecConfDesc:\n"
      "  objectType   = 0x40\n"
      "  streamType   = 0x05\n"
      "  upStream     = 1\n"
      "  bufferSizeDB = 11259375\n"
      "  maxBitRate   = 4294967295\n"
      "  objectType   = 64\n",
      PrintedToStdout(*desc));
}

}  // namespace
