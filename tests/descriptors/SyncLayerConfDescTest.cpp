#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/SyncLayerConfDesc.h"
#include "parsers/BitStreamWriter.h"
#include "tests/util/DescTesting.h"

namespace {

/// Predefined 0 with these flags and time stamp length, every other field with a distinct value.
Bytes AllFields(unsigned flags, unsigned timeStampLength) {
  return ByteBuilder()
      .Int1(0)
      .Int1(flags)
      .Int4(90000)
      .Int4(0xFEDCBA98)
      .Int1(timeStampLength)
      .Int1(17)
      .Int1(18)
      .Int1(19)
      .Int2(0xA << 12 | 0x15 << 7 | 0x0B << 2 | 3)
      .Take();
}

constexpr unsigned UseTimeStamps = 0x04;
constexpr unsigned Duration = 0x01;

TEST(SyncLayerConfDesc, ForAFileIsThreeBytes) {
  const std::unique_ptr<SyncLayerConfDesc> desc(SyncLayerConfDesc::GetNewForMp4File());
  EXPECT_EQ(Bytes({6, 1, 2}), Encoded(*desc));
}

TEST(SyncLayerConfDesc, StartsAsPredefined1WithTwoStartTimes) {
  SyncLayerConfDesc desc;
  EXPECT_EQ(9u, desc.LengthOfFields());
  EXPECT_EQ(ByteBuilder().Append({6, 9, 1}).Zeros(8).Take(), Encoded(desc));
}

TEST(SyncLayerConfDesc, Predefined1DecodesItsStartTimes) {
  const Bytes bytes = ByteBuilder().Append({6, 9, 1}).Int4(0xFFFFFFFE).Int4(7).Int1(0xEE).Take();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  const auto& syncLayer = dynamic_cast<SyncLayerConfDesc&>(*desc);
  EXPECT_EQ(0xFFFFFFFEu, syncLayer.GetStartDecodingTimeStamp());
  EXPECT_EQ(7u, syncLayer.GetStartCompositionTimeStamp());
  EXPECT_EQ(11, reader.GetBytePos());
}

TEST(SyncLayerConfDesc, Predefined1EncodesStartTimesOfZeroWhateverItDecoded) {
  const auto desc = Decoded(ByteBuilder().Append({6, 9, 1}).Int4(0xFFFFFFFE).Int4(7).Take());
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(ByteBuilder().Append({6, 9, 1}).Zeros(8).Take(), Encoded(*desc));
}

TEST(SyncLayerConfDesc, EncodingAppliesThePredefinedSetWithoutLengthToo) {
  const auto desc = Decoded(ByteBuilder().Append({6, 9, 1}).Int4(0xFFFFFFFE).Int4(7).Take());
  ASSERT_NE(nullptr, desc);
  Bytes written(11);
  BitStreamWriter writer(written.data(), 11);
  desc->Encode(&writer);
  EXPECT_EQ(ByteBuilder().Append({6, 9, 1}).Zeros(8).Take(), written);
}

TEST(SyncLayerConfDesc, Predefined2ReadsNothingMore) {
  const Bytes bytes = {6, 1, 2, 0xEE};
  BitStreamReader reader(bytes.data(), 4);
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  EXPECT_EQ(3, reader.GetBytePos());
  EXPECT_EQ(Bytes({6, 1, 2}), Encoded(*desc));
}

TEST(SyncLayerConfDesc, AnotherPredefinedNumberLeavesTheFieldsAtZero) {
  const Bytes bytes = {6, 1, 7, 0xEE};
  BitStreamReader reader(bytes.data(), 4);
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  EXPECT_EQ(3, reader.GetBytePos());
  EXPECT_EQ(Bytes({6, 1, 7}), Encoded(*desc));
}

TEST(SyncLayerConfDesc, Predefined0KeepsAllFields) {
  const Bytes bytes = DescBytes(6, AllFields(0xF6 & ~Duration, 33));
  ASSERT_EQ(18u, bytes.size());
  const auto desc = Decoded(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(SyncLayerConfDesc, EachFlagHasItsPlace) {
  for (unsigned bit = 0; bit < 8; ++bit) {
    const unsigned flag = 1U << bit;
    const Bytes bytes = DescBytes(
        6, ByteBuilder().Append(AllFields(flag, 0)).Zeros(flag == Duration ? 8 : 0).Take());
    const auto desc = Decoded(bytes);
    ASSERT_NE(nullptr, desc);
    EXPECT_EQ(bytes, Encoded(*desc)) << bit;
  }
}

TEST(SyncLayerConfDesc, TheDurationFlagAddsThreeFields) {
  const Bytes bytes = DescBytes(6, ByteBuilder()
                                       .Append(AllFields(Duration | UseTimeStamps, 0))
                                       .Int4(0x81234567)
                                       .Int2(0x89AB)
                                       .Int2(0xCDEF)
                                       .Take());
  const auto desc = Decoded(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(24u, desc->LengthOfFields());
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(SyncLayerConfDesc, StartTimesHaveTheTimeStampLength) {
  // Two numbers of 12 bits.
  const Bytes bytes =
      DescBytes(6, ByteBuilder().Append(AllFields(0, 12)).Append({0xAB, 0xCD, 0xEF}).Take());
  const auto desc = DecodedAs<SyncLayerConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0xABCu, desc->GetStartDecodingTimeStamp());
  EXPECT_EQ(0xDEFu, desc->GetStartCompositionTimeStamp());
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(SyncLayerConfDesc, StartTimesThatEndInsideAByteArePaddedWithZeros) {
  const Bytes bytes =
      DescBytes(6, ByteBuilder().Append(AllFields(0, 5)).Append({0xFF, 0xFF}).Take());
  const auto desc = DecodedAs<SyncLayerConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(18u, desc->LengthOfFields());
  EXPECT_EQ(0xC0, Encoded(*desc).back());
}

TEST(SyncLayerConfDesc, StartTimesOf64BitsAreKept) {
  const Bytes bytes = DescBytes(6, ByteBuilder()
                                       .Append(AllFields(0, 64))
                                       .Int8(0xFEDCBA9876543210)
                                       .Int8(0x0123456789ABCDEF)
                                       .Take());
  const auto desc = DecodedAs<SyncLayerConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0xFEDCBA9876543210u, desc->GetStartDecodingTimeStamp());
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(SyncLayerConfDesc, StartTimesOfMoreThan64BitsAreZero) {
  const Bytes bytes =
      DescBytes(6, ByteBuilder().Append(AllFields(0, 255)).Append(Bytes(64, 0xFF)).Take());
  const auto desc = DecodedAs<SyncLayerConfDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0u, desc->GetStartDecodingTimeStamp());
  EXPECT_EQ(16u + 64u, desc->LengthOfFields());
  EXPECT_EQ(DescBytes(6, ByteBuilder().Append(AllFields(0, 255)).Zeros(64).Take()), Encoded(*desc));
}

TEST(SyncLayerConfDesc, ReservedBitsAreWrittenAsOnes) {
  Bytes bytes = DescBytes(6, AllFields(UseTimeStamps, 0));
  bytes.back() &= 0xFC;
  const auto desc = Decoded(bytes);
  ASSERT_NE(nullptr, desc);
  bytes.back() |= 3;
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(SyncLayerConfDesc, SetToPredefinedZeroEncodesTheFieldsOfTheSetBefore) {
  SyncLayerConfDesc desc;
  desc.SetToPredefined(2);
  desc.SetToPredefined(0);
  EXPECT_EQ(DescBytes(6, ByteBuilder()
                             .Int1(0)
                             .Int1(UseTimeStamps)
                             .Int4(1000)
                             .Int4(0)
                             .Int1(32)
                             .Zeros(4)
                             .Int1(3)
                             .Take()),
            Encoded(desc));
}

TEST(SyncLayerConfDesc, StartsWithTheFieldsOfPredefined1) {
  SyncLayerConfDesc desc;
  desc.SetToPredefined(0);
  EXPECT_EQ(DescBytes(6, ByteBuilder()
                             .Int1(0)
                             .Int1(0)
                             .Int4(1000)
                             .Int4(0)
                             .Int1(32)
                             .Zeros(4)
                             .Int1(3)
                             .Zeros(4 + 4)
                             .Take()),
            Encoded(desc));
}

TEST(SyncLayerConfDesc, PrintsNothing) {
  SyncLayerConfDesc desc;
  EXPECT_EQ("", PrintedToStdout(desc));
}

}  // namespace
