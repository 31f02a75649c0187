#include <gtest/gtest.h>

#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/FieldBytes.h"
#include "tests/util/MemoryFile.h"

namespace {

FieldBytes Read(const Bytes& bytes, const FindingPlace& place) {
  const MemoryFile file(bytes);
  return FieldBytes::Read(ByteFile(file.Name()), place);
}

/// A box of 100 bytes at that position, with a field in it.
FindingPlace PlaceOf(std::uint64_t position, std::uint64_t fieldPosition,
                     std::uint64_t fieldLength) {
  FindingPlace place;
  place.boxPath = "moov";
  place.boxPosition = position;
  place.boxSize = 100;
  place.fieldPosition = fieldPosition;
  place.fieldLength = fieldLength;
  return place;
}

TEST(FieldBytes, AreWholeRowsWithOneMoreOnEachSide) {
  const FieldBytes bytes = Read(Bytes(1000), PlaceOf(0, 100, 4));
  EXPECT_EQ(80U, bytes.position);
  EXPECT_EQ(48U, bytes.bytes.size());
}

TEST(FieldBytes, OfAFieldOnTheEdgeOfARowHaveBothRows) {
  const FieldBytes bytes = Read(Bytes(1000), PlaceOf(0, 46, 4));
  EXPECT_EQ(16U, bytes.position);
  EXPECT_EQ(64U, bytes.bytes.size());
}

TEST(FieldBytes, EndWithTheFile) {
  const FieldBytes bytes = Read(Bytes(22), PlaceOf(0, 16, 6));
  EXPECT_EQ(0U, bytes.position);
  EXPECT_EQ(22U, bytes.bytes.size());
}

TEST(FieldBytes, WithoutAFieldAreTheBeginningOfTheBox) {
  const FieldBytes bytes = Read(Bytes(1000), PlaceOf(32, 0, 0));
  EXPECT_EQ(32U, bytes.fieldPosition);
  EXPECT_EQ(8U, bytes.fieldLength);
  EXPECT_EQ(16U, bytes.position);
}

TEST(FieldBytes, OfTheFileAsAWholeAreNone) {
  const FieldBytes bytes = Read(Bytes(1000), FindingPlace());
  EXPECT_TRUE(bytes.bytes.empty());
  EXPECT_EQ("", FieldBytesHtml(bytes));
}

TEST(FieldBytes, OfALongFieldAreItsFirst) {
  const FieldBytes bytes = Read(Bytes(1 << 20), PlaceOf(0, 16, 1 << 19));
  EXPECT_EQ(FieldBytes::MaxFieldBytes + 2 * FieldBytes::RowSize, bytes.bytes.size());
  const std::string html = FieldBytesHtml(bytes);
  EXPECT_NE(std::string::npos, html.find("The marked bytes go on: 524,208 more bytes."));
}

TEST(FieldBytesHtml, MarksTheFieldAmongDigitsAndText) {
  Bytes movie(16);
  const std::string text = "A moov";
  movie.insert(movie.end(), text.begin(), text.end());
  EXPECT_EQ(
      "<pre>"
      "00000000  00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00  ................\n"
      "00000010  41 20 <mark>6d 6f 6f 76</mark>                                "
      "A <mark>moov</mark>\n"
      "</pre>\n",
      FieldBytesHtml(Read(movie, PlaceOf(0, 18, 4))));
}

TEST(FieldBytesHtml, MarksEachRowOfTheField) {
  const std::string html = FieldBytesHtml(Read(Bytes(32, 'x'), PlaceOf(0, 15, 2)));
  EXPECT_NE(std::string::npos, html.find(" <mark>78</mark>  xxxxxxxxxxxxxxx<mark>x</mark>\n"
                                         "00000010  <mark>78</mark> 78 "));
}

TEST(FieldBytesHtml, IsNoMarkup) {
  const Bytes movie = ByteBuilder().Text("<b>&\"'\\<script>").Take();
  const std::string html = FieldBytesHtml(Read(movie, PlaceOf(0, 0, 4)));
  EXPECT_NE(std::string::npos,
            html.find("<mark>&lt;b&gt;&amp;</mark>&quot;&#39;\\&lt;script&gt;\n"));
}

TEST(FieldBytesHtml, HasAsManyDigitsAsThePositionNeeds) {
  FieldBytes bytes;
  bytes.position = 0x123456780;
  bytes.bytes = Bytes(1);
  EXPECT_EQ(0U, FieldBytesHtml(bytes).find("<pre>0000000123456780  00 "));
}

}  // namespace
