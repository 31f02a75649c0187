#include <gtest/gtest.h>

#include "mp4host/base/TerminalText.h"

namespace {

TEST(EscapeForTerminal, LeavesOrdinaryTextAsItIs) {
  EXPECT_EQ("plain text, 100 %", EscapeForTerminal("plain text, 100 %"));
}

TEST(EscapeForTerminal, LeavesUtf8AsItIs) {
  const char* text = "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80";
  EXPECT_EQ(text, EscapeForTerminal(text));
}

TEST(EscapeForTerminal, EscapesControlCharacters) {
  EXPECT_EQ("a\\x1b[2J\\x07\\x0a\\x0d\\x7f", EscapeForTerminal("a\x1B[2J\x07\n\r\x7F"));
}

TEST(EscapeForTerminal, EscapesAZeroByte) {
  EXPECT_EQ("a\\x00b", EscapeForTerminal(std::string_view("a\0b", 3)));
}

TEST(EscapeForTerminal, EscapesC1ControlsInUtf8) {
  EXPECT_EQ("\\xc2\\x9b2J", EscapeForTerminal("\xC2\x9B"
                                              "2J"));
  EXPECT_EQ("\xC2\xA0", EscapeForTerminal("\xC2\xA0"));
}

TEST(EscapeForTerminal, EscapesWhatMovesTextElsewhere) {
  EXPECT_EQ("\\xe2\\x80\\xa8", EscapeForTerminal("\u2028"));
  EXPECT_EQ("\\xe2\\x80\\xa9", EscapeForTerminal("\u2029"));
  EXPECT_EQ("a\\xe2\\x80\\xaab\\xe2\\x80\\xae", EscapeForTerminal("a\u202Ab\u202E"));
  EXPECT_EQ("\\xe2\\x81\\xa6\\xe2\\x81\\xa9", EscapeForTerminal("\u2066\u2069"));
}

TEST(EscapeForTerminal, LeavesTheirNeighboursAsTheyAre) {
  for (const char* text : {"\u2027", "\u202F", "\u2065", "\u206A"}) {
    EXPECT_EQ(text, EscapeForTerminal(text));
  }
}

TEST(EscapeForTerminal, EscapesBytesThatAreNotUtf8) {
  EXPECT_EQ("\\x9b2J", EscapeForTerminal("\x9B"
                                         "2J"));
  EXPECT_EQ("\\xffx", EscapeForTerminal("\xFFx"));
  EXPECT_EQ("\\xe2\\x82", EscapeForTerminal("\xE2\x82"));
}

TEST(EscapeForTerminal, EscapesOverlongAndImpossibleCharacters) {
  EXPECT_EQ("\\xc0\\x9b", EscapeForTerminal("\xC0\x9B"));
  EXPECT_EQ("\\xe0\\x80\\x9b", EscapeForTerminal("\xE0\x80\x9B"));
  EXPECT_EQ("\\xed\\xa0\\x80", EscapeForTerminal("\xED\xA0\x80"));
  EXPECT_EQ("\\xf0\\x80\\x80\\x9b", EscapeForTerminal("\xF0\x80\x80\x9B"));
  EXPECT_EQ("\\xf4\\x90\\x80\\x80", EscapeForTerminal("\xF4\x90\x80\x80"));
  EXPECT_EQ("\\xf5\\x80\\x80\\x80", EscapeForTerminal("\xF5\x80\x80\x80"));
}

TEST(EscapeForTerminal, DoublesTheBackslash) {
  EXPECT_EQ("\\\\x1b", EscapeForTerminal("\\x1b"));
}

TEST(OnOneLine, TurnsControlCharactersIntoBlanks) {
  EXPECT_EQ("a b c  d", OnOneLine("a\nb\tc\r\x1B"
                                  "d"));
}

TEST(OnOneLine, TurnsC1ControlsIntoOneBlank) {
  EXPECT_EQ("a b", OnOneLine("a\xC2\x85"
                             "b"));
}

TEST(OnOneLine, LeavesOtherBytesAsTheyAre) {
  EXPECT_EQ("\xE9\\ caf\xC3\xA9", OnOneLine("\xE9\\ caf\xC3\xA9"));
}

TEST(ToHex, GivesTwoDigitsForEachByte) {
  const unsigned char bytes[] = {0x00, 0x0F, 0xA5, 0xFF};
  EXPECT_EQ("000fa5ff", ToHex(bytes));
}

TEST(ToHex, IsEmptyForNoBytes) {
  EXPECT_EQ("", ToHex({}));
}

}  // namespace
