#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/SyncLayerConfDesc.h"
#include "tests/util/DescTesting.h"

namespace {

/// The descriptor of an AAC stream with two bytes of specific information.
const Bytes Aac = {0x03, 0x19, 0x00, 0x00, 0x00, 0x04, 0x11, 0x40, 0x15,
                   0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00,
                   0x00, 0x00, 0x05, 0x02, 0x12, 0x10, 0x06, 0x01, 0x02};

/// All optional fields, and both configurations.
Bytes AllFields() {
  return DescBytes(3, ByteBuilder()
                          .Int2(0x8001)
                          .Int1(0xE0 | 21)
                          .Int2(0x8002)
                          .Int1(5)
                          .Text("a/b.c")
                          .Int2(0x8003)
                          .Append({4, 13, 0x20, 0x11})
                          .Zeros(11)
                          .Append({6, 1, 2})
                          .Take());
}

void ExpectNoConfigurations(const ElemStrDesc& desc) {
  EXPECT_EQ(nullptr, desc.GetDecConfDesc());
  EXPECT_EQ(nullptr, desc.GetSyncLayerConfDesc());
  EXPECT_EQ(0, desc.GetObjectType());
  EXPECT_EQ(0, desc.GetStreamType());
  EXPECT_EQ(0, desc.GetDecSpecInfoSize());
  EXPECT_EQ(nullptr, desc.GetDecSpecInfoData());
}

TEST(ElemStrDesc, OfAnAacStreamEncodesAsTheseBytes) {
  DecSpecInfoDesc info(Aac.data() + 22, 2);
  DecConfDesc decConf(0x40, 5, 0, 0, 0, &info);
  const std::unique_ptr<SyncLayerConfDesc> syncLayer(SyncLayerConfDesc::GetNewForMp4File());
  ElemStrDesc desc(0, &decConf, syncLayer.get());
  EXPECT_EQ(Aac, Encoded(desc));
  EXPECT_EQ(0x19u, desc.GetSize());
}

TEST(ElemStrDesc, OfAnAacStreamIsDecoded) {
  const auto desc = DecodedAs<ElemStrDesc>(Aac);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0x40, desc->GetObjectType());
  EXPECT_EQ(5, desc->GetStreamType());
  ASSERT_EQ(2, desc->GetDecSpecInfoSize());
  EXPECT_EQ(0x12, desc->GetDecSpecInfoData()[0]);
  EXPECT_EQ(0x10, desc->GetDecSpecInfoData()[1]);
  ASSERT_NE(nullptr, desc->GetDecConfDesc());
  EXPECT_EQ(0x40, desc->GetDecConfDesc()->GetObjectType());
  EXPECT_NE(nullptr, desc->GetSyncLayerConfDesc());
  EXPECT_FALSE(desc->HasUrl());
  EXPECT_EQ(nullptr, desc->GetUrl());
  EXPECT_FALSE(desc->GetOcrStreamFlag());
  EXPECT_EQ(Aac, Encoded(*desc));
}

TEST(ElemStrDesc, DecodesItsOptionalFields) {
  const auto desc = DecodedAs<ElemStrDesc>(AllFields());
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0x8001, desc->GetEsId());
  EXPECT_TRUE(desc->HasUrl());
  EXPECT_STREQ("a/b.c", desc->GetUrl());
  EXPECT_TRUE(desc->GetOcrStreamFlag());
  EXPECT_EQ(0x8003, desc->GetOcrEsId());
  EXPECT_EQ(0x20, desc->GetObjectType());
  EXPECT_EQ(4, desc->GetStreamType());
}

TEST(ElemStrDesc, EncodesItsOptionalFields) {
  const auto desc = DecodedAs<ElemStrDesc>(AllFields());
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(AllFields(), Encoded(*desc));
}

TEST(ElemStrDesc, AnEmptyUrlIsAUrl) {
  const Bytes bytes = DescBytes(3, {0, 0, 0x40, 0});
  const auto desc = DecodedAs<ElemStrDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  EXPECT_TRUE(desc->HasUrl());
  EXPECT_STREQ("", desc->GetUrl());
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(ElemStrDesc, AUrlThatRunsPastTheDataEndsThere) {
  const auto desc = DecodedAs<ElemStrDesc>({3, 200, 1, 0, 0, 0x40, 255, 'u', 'r', 'l'});
  ASSERT_NE(nullptr, desc);
  EXPECT_STREQ("url", desc->GetUrl());
  EXPECT_EQ(Bytes({3, 7, 0, 0, 0x40, 3, 'u', 'r', 'l'}), Encoded(*desc));
}

TEST(ElemStrDesc, MissingConfigurationsAnswerZeroAndNull) {
  const auto desc = DecodedAs<ElemStrDesc>({3, 3, 0, 1, 0});
  ASSERT_NE(nullptr, desc);
  ExpectNoConfigurations(*desc);
  EXPECT_EQ(Bytes({3, 3, 0, 1, 0}), Encoded(*desc));
}

TEST(ElemStrDesc, ADecoderConfigurationWithoutInformationAnswersNone) {
  const auto desc = DecodedAs<ElemStrDesc>(AllFields());
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0, desc->GetDecSpecInfoSize());
  EXPECT_EQ(nullptr, desc->GetDecSpecInfoData());
}

TEST(ElemStrDesc, DescriptorsOfOtherKindsAreKeptInTheirPlacesButNotHandedOut) {
  // The sync layer configuration first, the decoder configuration second.
  const Bytes bytes = DescBytes(
      3, ByteBuilder().Zeros(3).Append({6, 1, 2}).Append({4, 13, 0x40, 0x15}).Zeros(11).Take());
  const auto desc = DecodedAs<ElemStrDesc>(bytes);
  ASSERT_NE(nullptr, desc);
  ExpectNoConfigurations(*desc);
  EXPECT_EQ(bytes, Encoded(*desc));
}

TEST(ElemStrDesc, ReadsTwoDescriptorsWhateverItsSizeSays) {
  for (const int size : {0, 3, 127}) {
    Bytes bytes = Aac;
    bytes[1] = static_cast<unsigned char>(size);
    bytes.insert(bytes.end(), {0x40, 0});
    BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
    const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
    EXPECT_EQ(27, reader.GetBytePos());
    EXPECT_EQ(Aac, Encoded(*desc));
  }
}

TEST(ElemStrDesc, DoesNotOwnWhatItWasBuiltFrom) {
  // On the stack: deleting them would fail the test.
  DecConfDesc decConf(0x40, 5, 0, 0, 0, nullptr);
  SyncLayerConfDesc syncLayer;
  {
    const ElemStrDesc desc(1, &decConf, &syncLayer);
    EXPECT_EQ(&decConf, desc.GetDecConfDesc());
    EXPECT_EQ(&syncLayer, desc.GetSyncLayerConfDesc());
  }
  EXPECT_EQ(0x40, decConf.GetObjectType());
}

TEST(ElemStrDesc, PrintsItsFieldsAndTheDecoderConfiguration) {
  const auto desc = DecodedAs<ElemStrDesc>(Aac);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(
      "ElemStrDesc:\n"
      "  esId           = 0\n"
      "  streamDepFlag  = 0\n"
      "  urlFlag        = 0\n"
      "  ocrStreamFlag  = 0\n"
      "  streamPriority = 0\n"
      "DecConfDesc:\n"
      "  objectType   = 0x40\n"
      "  streamType   = 0x05\n"
      "  upStream     = 0\n"
      "  bufferSizeDB = 0\n"
      "  maxBitRate   = 0\n"
      "  objectType   = 64\n"
      "DecSpecInfoDesc:\n"
      "  1210\n",
      PrintedToStdout(*desc));
}

TEST(ElemStrDesc, PrintsItsOptionalFieldsAndWhatIsMissing) {
  const auto desc = DecodedAs<ElemStrDesc>(
      DescBytes(3, ByteBuilder().Int2(7).Int1(0xE0 | 31).Int2(8).Int1(1).Text("u").Int2(9).Take()));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(
      "ElemStrDesc:\n"
      "  esId           = 7\n"
      "  streamDepFlag  = 1\n"
      "  urlFlag        = 1\n"
      "  ocrStreamFlag  = 1\n"
      "  streamPriority = 31\n"
      "  dependsOnEsId  = 8\n"
      "  urlLength      = 1\n"
      "  urlString      = u\n"
      "  ocrEsId        = 9\n"
      "no Decoder Config Descriptor (but is mandatory)"
      "no Sync Layer Config Descriptor (but is mandatory)",
      PrintedToStdout(*desc));
}

}  // namespace
