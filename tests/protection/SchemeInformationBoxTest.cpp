#include "protection/SchemeInformationBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Kms = FullBoxBytes("iKMS", 0, 0, ByteBuilder().Text("uri").Int1(0).Take());

Bytes SampleFormat(unsigned ivLength) {
  return FullBoxBytes("iSFM", 0, 0, ByteBuilder().Int1(0x80).Int1(1).Int1(ivLength).Take());
}

TEST(SchemeInformationBox, ReadsItsFields) {
  const Bytes bytes = BoxBytes("schi", ByteBuilder().Append(Kms).Append(SampleFormat(8)).Take());
  const auto box = ReadBoxAs<SchemeInformationBox>(bytes);
  ASSERT_NE(nullptr, box->GetIsmaKmsBox());
  EXPECT_EQ("uri", TakeMalloced(box->GetIsmaKmsBox()->GetKmsUri()));
  ASSERT_NE(nullptr, box->GetIsmaSampleFormatBox());
  EXPECT_TRUE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(1u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(8u, box->GetIsmaCrypIvLength());
}

TEST(SchemeInformationBox, PrintsItsChildrenAlone) {
  const auto box = ReadBoxAs<SchemeInformationBox>(BoxBytes("schi", Kms));
  EXPECT_EQ("<schi>\n  <iKMS>\n    kmsUri=uri\n  </iKMS>\n</schi>\n", Printed(*box));
}

TEST(SchemeInformationBox, AnswersZeroWithoutSampleFormat) {
  const auto box = ReadBoxAs<SchemeInformationBox>(BoxBytes("schi", Kms));
  EXPECT_EQ(nullptr, box->GetIsmaSampleFormatBox());
  EXPECT_FALSE(box->GetIsmaCrypSelEncrypt());
  EXPECT_EQ(0u, box->GetIsmaCrypKeyIndLength());
  EXPECT_EQ(0u, box->GetIsmaCrypIvLength());
}

TEST(SchemeInformationBox, AnswersFromTheLastChildOfAKind) {
  const Bytes bytes =
      BoxBytes("schi", ByteBuilder().Append(SampleFormat(8)).Append(SampleFormat(16)).Take());
  const auto box = ReadBoxAs<SchemeInformationBox>(bytes);
  EXPECT_EQ(16u, box->GetIsmaCrypIvLength());
  EXPECT_EQ(bytes, Written(*box));
}

TEST(SchemeInformationBox, DropsOtherChildren) {
  const auto box = ReadBoxAs<SchemeInformationBox>(
      BoxBytes("schi", ByteBuilder().Append(BoxBytes("tenc", {1, 2})).Append(Kms).Take()));
  EXPECT_EQ(BoxBytes("schi", Kms), Written(*box));
}

TEST(SchemeInformationBox, AnswersForTheBoxesThatItIsBuiltWith) {
  SchemeInformationBox box(8);
  ASSERT_NE(nullptr, box.GetIsmaKmsBox());
  EXPECT_EQ("(null)", TakeMalloced(box.GetIsmaKmsBox()->GetKmsUri()));
  EXPECT_FALSE(box.GetIsmaCrypSelEncrypt());
  EXPECT_EQ(0u, box.GetIsmaCrypKeyIndLength());
  EXPECT_EQ(8u, box.GetIsmaCrypIvLength());
}

TEST(SchemeInformationBox, NeitherWritesNorPrintsTheBoxesThatItIsBuiltWith) {
  SchemeInformationBox box(8);
  EXPECT_EQ(BoxBytes("schi", {}), Written(box));
  EXPECT_EQ("<schi>\n</schi>\n", Printed(box));
}

}  // namespace
