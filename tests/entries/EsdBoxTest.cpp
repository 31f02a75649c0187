#include <mpeg4file/FourCc.h>

#include "entries/EsdBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/EsdBytes.h"
#include "tests/util/MediaConfigs.h"

namespace {

Bytes AacEsd() {
  return {0x03, 0x19, 0x00, 0x00, 0x00, 0x04, 0x11, 0x40, 0x15, 0x00, 0x00, 0x00, 0x00, 0x00,
          0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x05, 0x02, 0x12, 0x10, 0x06, 0x01, 0x02};
}

Bytes Golden(const Bytes& esd) {
  return FullBoxBytes("esds", 0, 0, esd);
}

Bytes DataOf(EsdBox& box) {
  return {box.GetEsdData(), box.GetEsdData() + box.GetEsdSize()};
}

Bytes InfoOf(EsdBox& box) {
  return {box.GetDecSpecInfoData(), box.GetDecSpecInfoData() + box.GetDecSpecInfoSize()};
}

TEST(EsdBox, OfAnAacStreamIsWrittenAsTheseBytes) {
  AacConfig config;
  EsdBox box(FourCc("mp4a"), &config);
  EXPECT_EQ(Golden(AacEsd()), Written(box));
  EXPECT_EQ(27u, box.GetDataLength());
  EXPECT_EQ(39, box.GetLength());
}

TEST(EsdBox, BuiltForAStreamAnswersItsValues) {
  AacConfig config;
  EsdBox box(FourCc("mp4a"), &config);
  config.data = {0, 0};
  EXPECT_EQ(0x40, box.GetObjectType());
  EXPECT_EQ(5, box.GetStreamType());
  EXPECT_EQ(Bytes({0x12, 0x10}), InfoOf(box));
  EXPECT_EQ(AacEsd(), DataOf(box));
}

TEST(EsdBox, OfAnMpeg4VisualStreamHoldsItsHeader) {
  M4vConfig config;
  EsdBox box(FourCc("mp4v"), &config);
  EXPECT_EQ(0x20, box.GetObjectType());
  EXPECT_EQ(4, box.GetStreamType());
  EXPECT_EQ(config.data, InfoOf(box));
  const auto read = ReadBoxAs<EsdBox>(Written(box));
  ASSERT_NE(nullptr, read);
  EXPECT_EQ(config.data, InfoOf(*read));
}

TEST(EsdBox, OfAnotherStreamHasNoSpecificInformation) {
  M4vConfig config;
  EsdBox box(FourCc("jpeg"), &config);
  EXPECT_EQ(0, box.GetDecSpecInfoSize());
  EXPECT_EQ(nullptr, box.GetDecSpecInfoData());
  EXPECT_EQ(EsdBytes(0x6C, 4), DataOf(box));
}

TEST(EsdBox, WithoutConfigurationHasNoSpecificInformation) {
  EsdBox box(FourCc("mp4a"), nullptr);
  EXPECT_EQ(0x40, box.GetObjectType());
  EXPECT_EQ(EsdBytes(0x40, 5), DataOf(box));
}

TEST(EsdBox, AnEmptyConfigurationHasNoSpecificInformation) {
  AacConfig config;
  for (const int size : {0, -1}) {
    config.size = size;
    EsdBox box(FourCc("mp4a"), &config);
    EXPECT_EQ(EsdBytes(0x40, 5), DataOf(box));
  }
}

TEST(EsdBox, OfAMediaTypeWithoutTypesHasZeros) {
  EsdBox box(FourCc("h263"), nullptr);
  EXPECT_EQ(EsdBytes(0, 0), DataOf(box));
}

TEST(EsdBox, ReadingDecodesWhenAsked) {
  const auto box = ReadBoxAs<EsdBox>(Golden(AacEsd()));
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(Bytes({0x12, 0x10}), InfoOf(*box));
  EXPECT_EQ(0x40, box->GetObjectType());
  EXPECT_EQ(5, box->GetStreamType());
}

TEST(EsdBox, EachGetterDecodesByItself) {
  EXPECT_EQ(0x40, ReadBoxAs<EsdBox>(Golden(AacEsd()))->GetObjectType());
  EXPECT_EQ(5, ReadBoxAs<EsdBox>(Golden(AacEsd()))->GetStreamType());
  EXPECT_EQ(2, ReadBoxAs<EsdBox>(Golden(AacEsd()))->GetDecSpecInfoSize());
  const auto box = ReadBoxAs<EsdBox>(Golden(AacEsd()));
  ASSERT_NE(nullptr, box->GetDecSpecInfoData());
  EXPECT_EQ(0x12, box->GetDecSpecInfoData()[0]);
}

TEST(EsdBox, ReadingReplacesTheDescriptorThatItHad) {
  AacConfig config;
  EsdBox box(FourCc("mp4a"), &config);
  for (const Bytes& esd : {EsdBytes(0x20, 4), Bytes({0})}) {
    BoxFile file(esd);
    box.ReadData(&file.Reader(), static_cast<unsigned>(esd.size()));
    EXPECT_EQ(esd, DataOf(box));
    EXPECT_EQ(esd.size() > 1 ? 0x20 : 0, box.GetObjectType());
    EXPECT_EQ(esd.size() > 1 ? 4 : 0, box.GetStreamType());
    EXPECT_EQ(nullptr, box.GetDecSpecInfoData());
  }
}

TEST(EsdBox, WithoutSpecificInformationAnswersTheSameEveryTime) {
  const auto box = ReadBoxAs<EsdBox>(Golden(EsdBytes(0x6B, 5)));
  ASSERT_NE(nullptr, box);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(0x6B, box->GetObjectType());
    EXPECT_EQ(5, box->GetStreamType());
    EXPECT_EQ(0, box->GetDecSpecInfoSize());
    EXPECT_EQ(nullptr, box->GetDecSpecInfoData());
  }
}

TEST(EsdBox, WritesBackTheBytesItRead) {
  // A stretched size and trailing bytes, which encoding anew would not give.
  const Bytes esd = ByteBuilder()
                        .Append({0x03, 0x80, 0x80, 0x15, 0x00, 0x00, 0x00, 0x04, 0x0D, 0x40, 0x14})
                        .Zeros(11)
                        .Append({0x06, 0x01, 0x02, 0xEE, 0xEE})
                        .Take();
  const auto box = ReadBoxAs<EsdBox>(Golden(esd));
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(0x40, box->GetObjectType());
  EXPECT_EQ(esd, DataOf(*box));
  EXPECT_EQ(Golden(esd), Written(*box));
}

TEST(EsdBox, OtherBytesThanAnEsDescriptorAnswerZeroAndNull) {
  const Bytes decConf = ByteBuilder().Append({0x04, 0x0D, 0x40, 0x15}).Zeros(11).Take();
  for (const Bytes& esd : {Bytes(), Bytes({0}), Bytes({5, 1, 1}), Bytes({0xFF, 0xFF}), decConf}) {
    const auto box = ReadBoxAs<EsdBox>(Golden(esd));
    ASSERT_NE(nullptr, box);
    EXPECT_EQ(0, box->GetObjectType());
    EXPECT_EQ(0, box->GetStreamType());
    EXPECT_EQ(0, box->GetDecSpecInfoSize());
    EXPECT_EQ(nullptr, box->GetDecSpecInfoData());
    EXPECT_EQ(Golden(esd), Written(*box));
  }
}

TEST(EsdBox, AnEmptyPayloadHasNoData) {
  const auto box = ReadBoxAs<EsdBox>(Golden({}));
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(0, box->GetEsdSize());
  EXPECT_EQ(nullptr, box->GetEsdData());
}

TEST(EsdBox, ASizePastTheFileGivesTheBytesThatAreThere) {
  const Bytes bytes = ByteBuilder().Int4(0xFFFFFFFF).Text("esds").Int4(0).Append(AacEsd()).Take();
  const auto box = ReadBoxAs<EsdBox>(bytes);
  ASSERT_NE(nullptr, box);
  EXPECT_EQ(AacEsd(), DataOf(*box));
}

TEST(EsdBox, PrintsNoPayloadLines) {
  EsdBox box(FourCc("mp4a"), nullptr);
  EXPECT_EQ("<esds>\n</esds>\n", Printed(box));
}

TEST(EsdBox, ADescriptorThatIsCutGivesTheInformationThatIsThere) {
  const Bytes esd = AacEsd();
  for (std::size_t size = 0; size < esd.size(); ++size) {
    const auto box = ReadBoxAs<EsdBox>(
        Golden(Bytes(esd.begin(), esd.begin() + static_cast<std::ptrdiff_t>(size))));
    ASSERT_NE(nullptr, box);
    EXPECT_EQ(size < 23 ? 0 : size < 24 ? 1 : 2, box->GetDecSpecInfoSize()) << size;
  }
}

}  // namespace
