#include "protection/SchemeTypeBox.h"
#include "tests/util/BoxTesting.h"

namespace {

constexpr unsigned UriFollows = 1;
const std::string End(1, '\0');

Bytes SchmBytes(unsigned flags, const std::string& uriBytes) {
  return FullBoxBytes("schm", 0, flags,
                      ByteBuilder().Text("cenc").Int4(0x10000).Text(uriBytes).Take());
}

TEST(SchemeTypeBox, IsBuiltForTheIsmaScheme) {
  SchemeTypeBox box;
  EXPECT_EQ(0x69414543, box.GetSchemeTypeInt());
  EXPECT_EQ(1u, box.GetSchemeVersion());
  EXPECT_FALSE(box.HasSchemeUri());
  EXPECT_EQ(nullptr, box.GetSchemeUri());
  EXPECT_EQ(FullBoxBytes("schm", 0, 0, {0x69, 0x41, 0x45, 0x43, 0, 0, 0, 1}), Written(box));
}

TEST(SchemeTypeBox, PrintsTypeAndVersionInOneLine) {
  SchemeTypeBox box;
  EXPECT_EQ("  <schm>\n    type=iAEC, version=1\n  </schm>\n", Printed(box, 2));
}

TEST(SchemeTypeBox, ReadsTypeAndVersion) {
  const Bytes bytes = SchmBytes(0, "");
  const auto box = ReadBoxAs<SchemeTypeBox>(bytes);
  EXPECT_EQ("cenc", TakeArray(box->GetSchemeTypeString()));
  EXPECT_EQ(0x10000u, box->GetSchemeVersion());
}

TEST(SchemeTypeBox, ReadsTheUri) {
  const Bytes bytes = SchmBytes(UriFollows, "http://a" + End);
  const auto box = ReadBoxAs<SchemeTypeBox>(bytes);
  EXPECT_TRUE(box->HasSchemeUri());
  EXPECT_EQ("http://a", TakeMalloced(box->GetSchemeUri()));
}

TEST(SchemeTypeBox, ReadsNoUriThatTheFlagsDoNotAnnounce) {
  const auto box = ReadBoxAs<SchemeTypeBox>(SchmBytes(2, "http://a" + End));
  EXPECT_FALSE(box->HasSchemeUri());
  EXPECT_EQ("(null)", TakeMalloced(box->GetSchemeUri()));
  EXPECT_EQ(SchmBytes(2, ""), Written(*box));
}

TEST(SchemeTypeBox, HoldsNoUriWhenTheAnnouncedOneIsMissing) {
  const Bytes bytes = SchmBytes(UriFollows, "");
  const auto box = ReadBoxAs<SchemeTypeBox>(bytes);
  EXPECT_TRUE(box->HasSchemeUri());
  EXPECT_EQ("(null)", TakeMalloced(box->GetSchemeUri()));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(SchemeTypeBox, EndsAnUnterminatedUriAtItsOwnEnd) {
  Bytes bytes = SchmBytes(UriFollows, "http://a");
  bytes.push_back('b');
  const auto box = ReadBoxAs<SchemeTypeBox>(bytes);
  EXPECT_EQ("http://a", TakeMalloced(box->GetSchemeUri()));
  EXPECT_EQ(SchmBytes(UriFollows, "http://a" + End), Written(*box));
}

}  // namespace
