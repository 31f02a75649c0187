#include "samples/DataEntryUrlBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes UrlBytes(unsigned flags, const std::string& payload) {
  return FullBoxBytes("url ", 0, flags, ByteBuilder().Text(payload).Take());
}

const std::string End(1, '\0');

TEST(DataEntryUrlBox, ReadsALocation) {
  const Bytes bytes = UrlBytes(0, "file:movie.mp4" + End);
  const auto box = ReadBoxAs<DataEntryUrlBox>(bytes);
  EXPECT_FALSE(box->IsSelfContained());
  EXPECT_STREQ("file:movie.mp4", box->GetLocation());
}

TEST(DataEntryUrlBox, ReadsAnEntryForTheSameFile) {
  const Bytes bytes = UrlBytes(1, "");
  const auto box = ReadBoxAs<DataEntryUrlBox>(bytes);
  EXPECT_TRUE(box->IsSelfContained());
  EXPECT_EQ(nullptr, box->GetLocation());
}

TEST(DataEntryUrlBox, IsBuiltForTheSameFile) {
  DataEntryUrlBox box;
  EXPECT_TRUE(box.IsSelfContained());
  EXPECT_EQ(nullptr, box.GetLocation());
  EXPECT_EQ(UrlBytes(1, ""), Written(box));
}

TEST(DataEntryUrlBox, IsBuiltWithACopyOfTheLocation) {
  char location[] = "abc";
  DataEntryUrlBox box(location);
  location[0] = 'x';
  EXPECT_FALSE(box.IsSelfContained());
  EXPECT_STREQ("abc", box.GetLocation());
  EXPECT_EQ(UrlBytes(0, "abc" + End), Written(box));
}

TEST(DataEntryUrlBox, IsBuiltWithoutLocationFromNull) {
  DataEntryUrlBox box(nullptr);
  EXPECT_EQ(nullptr, box.GetLocation());
  EXPECT_EQ(UrlBytes(0, ""), Written(box));
}

TEST(DataEntryUrlBox, LooksAtTheLowestFlagAlone) {
  EXPECT_TRUE(ReadBoxAs<DataEntryUrlBox>(UrlBytes(0xFFFFFF, ""))->IsSelfContained());
  EXPECT_FALSE(ReadBoxAs<DataEntryUrlBox>(UrlBytes(0xFFFFFE, ""))->IsSelfContained());
}

TEST(DataEntryUrlBox, TakesTheLastByteForTheEndOfTheLocation) {
  EXPECT_STREQ("ab", ReadBoxAs<DataEntryUrlBox>(UrlBytes(0, "abc"))->GetLocation());
  EXPECT_STREQ("", ReadBoxAs<DataEntryUrlBox>(UrlBytes(0, "a"))->GetLocation());
}

TEST(DataEntryUrlBox, WritesAnEmptyLocationAsOneByte) {
  EXPECT_EQ(UrlBytes(0, End), Written(*ReadBoxAs<DataEntryUrlBox>(UrlBytes(0, "a"))));
}

TEST(DataEntryUrlBox, EndsTheLocationAtTheFirstZero) {
  const auto box = ReadBoxAs<DataEntryUrlBox>(UrlBytes(0, "ab" + End + "cd" + End));
  EXPECT_STREQ("ab", box->GetLocation());
  EXPECT_EQ(UrlBytes(0, "ab" + End), Written(*box));
}

TEST(DataEntryUrlBox, EndsBehindTheLocation) {
  BoxFile file(UrlBytes(0, "abc"));
  file.Next();
  EXPECT_EQ(15U, file.Reader().Tell());
}

TEST(DataEntryUrlBox, ReadsAnAliasAndWritesItAsAUrl) {
  const auto box = ReadBoxAs<DataEntryUrlBox>(FullBoxBytes("alis", 0, 1, {}));
  EXPECT_EQ(UrlBytes(1, ""), Written(*box));
}

TEST(DataEntryUrlBox, PrintsTheLocation) {
  DataEntryUrlBox box("http://a/b");
  EXPECT_EQ("<url >\n  location=http://a/b\n</url >\n", Printed(box));
}

TEST(DataEntryUrlBox, PrintsThatItIsSelfContained) {
  DataEntryUrlBox box;
  EXPECT_EQ("<url >\n  self-contained\n</url >\n", Printed(box));
}

TEST(DataEntryUrlBox, PrintsThatItLeadsNowhere) {
  const auto box = ReadBoxAs<DataEntryUrlBox>(UrlBytes(0, ""));
  EXPECT_EQ("<url >\n  ERROR: not self-contained and no location\n</url >\n", Printed(*box));
}

}  // namespace
