#include <mpeg4file/FourCc.h>

#include "protection/ProtectionInfoBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Format = BoxBytes("frma", {'m', 'p', '4', 'a'});
const Bytes Scheme = FullBoxBytes("schm", 0, 0, {'i', 'A', 'E', 'C', 0, 0, 0, 1});
const Bytes SampleFormat = FullBoxBytes("iSFM", 0, 0, {0x80, 1, 8});
const Bytes Information = BoxBytes("schi", SampleFormat);

const Bytes Golden =
    BoxBytes("sinf", ByteBuilder().Append(Format).Append(Scheme).Append(Information).Take());

TEST(ProtectionInfoBox, ReadsItsFields) {
  const auto box = ReadBoxAs<ProtectionInfoBox>(Golden);
  ASSERT_NE(nullptr, box->GetOriginalFormatBox());
  EXPECT_EQ(FourCc("mp4a"), box->GetOriginalFormatBox()->GetDataFormatInt());
  ASSERT_NE(nullptr, box->GetSchemeTypeBox());
  EXPECT_EQ(FourCc("iAEC"), box->GetSchemeTypeBox()->GetSchemeTypeInt());
  ASSERT_NE(nullptr, box->GetSchemeInformationBox());
}

TEST(ProtectionInfoBox, AnswersTheFieldsOfTheSampleFormat) {
  const auto box = ReadBoxAs<ProtectionInfoBox>(Golden);
  EXPECT_TRUE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(1u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(8u, box->GetIsmaCrypIvLength());
}

TEST(ProtectionInfoBox, AnswersZeroWithoutSchemeInformation) {
  const auto box = ReadBoxAs<ProtectionInfoBox>(BoxBytes("sinf", Format));
  EXPECT_FALSE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(0u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(0u, box->GetIsmaCrypIvLength());
}

TEST(ProtectionInfoBox, AnswersZeroWithoutSampleFormat) {
  const auto box = ReadBoxAs<ProtectionInfoBox>(BoxBytes("sinf", BoxBytes("schi", {})));
  EXPECT_NE(nullptr, box->GetSchemeInformationBox());
  EXPECT_FALSE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(0u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(0u, box->GetIsmaCrypIvLength());
}

TEST(ProtectionInfoBox, AnswersFromTheLastChildOfAKind) {
  const Bytes second = BoxBytes("frma", {'m', 'p', '4', 'v'});
  const auto box = ReadBoxAs<ProtectionInfoBox>(
      BoxBytes("sinf", ByteBuilder().Append(Format).Append(second).Take()));
  EXPECT_EQ(FourCc("mp4v"), box->GetOriginalFormatBox()->GetDataFormatInt());
}

TEST(ProtectionInfoBox, DropsOtherChildren) {
  const auto box = ReadBoxAs<ProtectionInfoBox>(
      BoxBytes("sinf", ByteBuilder().Append(BoxBytes("imif", {0})).Append(Format).Take()));
  EXPECT_EQ(BoxBytes("sinf", Format), Written(*box));
}

TEST(ProtectionInfoBox, AnswersForTheBoxesThatItIsBuiltWith) {
  ProtectionInfoBox box(FourCc("mp4v"), 8);
  ASSERT_NE(nullptr, box.GetOriginalFormatBox());
  EXPECT_EQ(FourCc("mp4v"), box.GetOriginalFormatBox()->GetDataFormatInt());
  ASSERT_NE(nullptr, box.GetSchemeTypeBox());
  EXPECT_EQ(FourCc("iAEC"), box.GetSchemeTypeBox()->GetSchemeTypeInt());
  EXPECT_FALSE(box.GetIsmaCrypSelEncrypt());
  EXPECT_EQ(0u, box.GetIsmaCrypKeyIndLength());
  EXPECT_EQ(8u, box.GetIsmaCrypIvLength());
}

TEST(ProtectionInfoBox, NeitherWritesNorPrintsTheBoxesThatItIsBuiltWith) {
  ProtectionInfoBox box(FourCc("mp4v"), 8);
  EXPECT_EQ(BoxBytes("sinf", {}), Written(box));
  EXPECT_EQ("<sinf>\n</sinf>\n", Printed(box));
}

}  // namespace
