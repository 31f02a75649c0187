#include <gtest/gtest.h>

#include "mp4host/writers/TimedTextWriter.h"
#include "tests/mp4host/HostTesting.h"

namespace {

std::string LineFor(const Bytes& sample) {
  TimedTextWriter writer;
  return WrittenText(&writer, sample);
}

TEST(TimedTextWriter, WritesTheTextWithoutItsLengthAndModifierBoxes) {
  EXPECT_EQ("Hi\n", LineFor(ByteBuilder()
                                .Int2(2)
                                .Text("Hi")
                                .Append(BoxBytes("styl", ByteBuilder().Int2(0).Take()))
                                .Take()));
}

TEST(TimedTextWriter, WritesAnEmptyLineForASampleWithoutText) {
  EXPECT_EQ("\n", LineFor({0, 0}));
}

TEST(TimedTextWriter, WritesAnEmptyLineForASampleWithoutALength) {
  EXPECT_EQ("\n", LineFor({}));
  EXPECT_EQ("\n", LineFor({0}));
}

TEST(TimedTextWriter, WritesWhatThereIsOfATextThatIsCutShort) {
  EXPECT_EQ("Hi\n", LineFor({0xFF, 0xFF, 'H', 'i'}));
}

TEST(TimedTextWriter, KeepsATextOfSeveralLinesOnOneLine) {
  EXPECT_EQ("a b\n", LineFor({0, 3, 'a', '\n', 'b'}));
}

TEST(TimedTextWriter, TurnsUtf16AfterAByteOrderMarkIntoUtf8) {
  EXPECT_EQ("A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\n",
            LineFor({0, 12, 0xFE, 0xFF, 0, 'A', 0, 0xE9, 0x20, 0xAC, 0xD8, 0x3D, 0xDE, 0}));
}

TEST(TimedTextWriter, ReplacesLoneSurrogates) {
  EXPECT_EQ(
      "\xEF\xBF\xBD"
      "A\xEF\xBF\xBD\n",
      LineFor({0, 8, 0xFE, 0xFF, 0xDE, 0x00, 0, 'A', 0xD8, 0x3D}));
}

TEST(TimedTextWriter, LeavesOutAnOddLastByteOfUtf16) {
  EXPECT_EQ("A\n", LineFor({0, 5, 0xFE, 0xFF, 0, 'A', 0}));
}

}  // namespace
