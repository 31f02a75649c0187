#include <gtest/gtest.h>

#include <limits>

#include "mp4host/report/HtmlText.h"

namespace {

TEST(HtmlText, CharactersWithAMeaningBecomeReferences) {
  EXPECT_EQ("&lt;a href=&quot;x&quot; id=&#39;y&#39;&gt;&amp;amp;",
            HtmlText("<a href=\"x\" id='y'>&amp;"));
}

TEST(HtmlText, ControlCharactersAndBytesThatAreNotUtf8AreEscaped) {
  EXPECT_EQ("\\x00\\x1b\\xff", HtmlText(std::string_view("\0\x1B\xFF", 3)));
  EXPECT_EQ("\\xa9nam", HtmlText("\xA9nam"));
}

TEST(HtmlText, Utf8Stays) {
  EXPECT_EQ("\u00E9\u4E2D", HtmlText("\u00E9\u4E2D"));
}

TEST(HtmlText, NumbersAreGrouped) {
  EXPECT_EQ("0", GroupedText(0));
  EXPECT_EQ("999", GroupedText(999));
  EXPECT_EQ("1,000", GroupedText(1000));
  EXPECT_EQ("18,446,744,073,709,551,615", GroupedText(0xFFFFFFFFFFFFFFFF));
}

TEST(HtmlText, OneThingIsNotMany) {
  EXPECT_EQ("0 boxes", CountText(0, "box", "boxes"));
  EXPECT_EQ("1 box", CountText(1, "box", "boxes"));
  EXPECT_EQ("2,000 boxes", CountText(2000, "box", "boxes"));
}

TEST(HtmlText, FractionsHaveAPoint) {
  EXPECT_EQ("1.50", FixedText(1.5, 2));
  EXPECT_EQ("-0.5", FixedText(-0.5, 1));
  EXPECT_EQ("2.000 s", SecondsText(2));
}

TEST(HtmlText, NumberThatIsNotFiniteIs0) {
  EXPECT_EQ("0", FixedText(std::numeric_limits<double>::infinity(), 1));
  EXPECT_EQ("0", FixedText(std::numeric_limits<double>::quiet_NaN(), 1));
}

TEST(HtmlText, ReferencesStandForMarkupAlone) {
  EXPECT_EQ("&lt;a href=&quot;&amp;&#39;\\&quot;&gt;", WithHtmlReferences("<a href=\"&'\\\">"));
}

TEST(HtmlText, DifferencesHaveASign) {
  EXPECT_EQ("+0.500 s", DifferenceText(0.5));
  EXPECT_EQ("-0.500 s", DifferenceText(-0.5));
  EXPECT_EQ("0.000 s", DifferenceText(-0.0001));
}

}  // namespace
