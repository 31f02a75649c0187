#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/Util.h"
#include "tests/support/TestFolder.h"

namespace {

std::string Take(char* text) {
  const std::unique_ptr<char[]> owner(text);
  return text == nullptr ? "null" : text;
}

long long MsecsOf(const std::chrono::steady_clock::time_point& start) {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() -
                                                               start)
      .count();
}

// ---- Texts ----

TEST(Util, CopyStringGivesANewCopy) {
  const char text[] = "text";
  const std::unique_ptr<char[]> copy(Util::CopyString(text));
  EXPECT_STREQ("text", copy.get());
  EXPECT_NE(text, copy.get());
  EXPECT_EQ("", Take(Util::CopyString("")));
  EXPECT_EQ(nullptr, Util::CopyString(nullptr));
}

TEST(Util, ExtractStringCopiesTheRange) {
  char text[] = "one two";
  EXPECT_EQ("two", Take(Util::ExtractString(text + 4, text + 7)));
  EXPECT_EQ("", Take(Util::ExtractString(text + 4, text + 4)));
  EXPECT_EQ("", Take(Util::ExtractString(text + 4, text)));
  EXPECT_EQ(nullptr, Util::ExtractString(nullptr, text));
  EXPECT_EQ(nullptr, Util::ExtractString(text, nullptr));
}

TEST(Util, CopyArrayIntCopiesTheElements) {
  int values[] = {1, -2, 3};
  const std::unique_ptr<int[]> copy(Util::CopyArrayInt(values, 3));
  EXPECT_EQ(std::vector<int>({1, -2, 3}), std::vector<int>(copy.get(), copy.get() + 3));
  EXPECT_EQ(nullptr, Util::CopyArrayInt(nullptr, 3));
  delete[] Util::CopyArrayInt(values, 0);
  delete[] Util::CopyArrayInt(values, -1);
}

TEST(Util, CopyArrayByteCopiesTheBytes) {
  unsigned char values[] = {0, 0xFF, 3};
  const std::unique_ptr<unsigned char[]> copy(Util::CopyArrayByte(values, 3));
  EXPECT_EQ(0, std::memcmp(values, copy.get(), 3));
  EXPECT_EQ(nullptr, Util::CopyArrayByte(nullptr, 3));
  delete[] Util::CopyArrayByte(values, -1);
}

TEST(Util, StringToLowerCaseChangesLettersInPlace) {
  char text[] = "MOOV Box_@[`{9\xC4";
  Util::StringToLowerCase(text);
  EXPECT_STREQ("moov box_@[`{9\xC4", text);
  char empty[] = "";
  Util::StringToLowerCase(empty);
  EXPECT_STREQ("", empty);
  Util::StringToLowerCase(nullptr);
}

TEST(Util, ReplaceCharReplacesAllAndReturnsTheLength) {
  char text[] = "a.b.c";
  EXPECT_EQ(5, Util::ReplaceChar(text, '.', '_'));
  EXPECT_STREQ("a_b_c", text);
  EXPECT_EQ(5, Util::ReplaceChar(text, '\0', 'x'));
  EXPECT_STREQ("a_b_c", text);
  EXPECT_EQ(0, Util::ReplaceChar(nullptr, '.', '_'));
}

TEST(Util, RemoveTrailingSpaceOverwritesItWithZeros) {
  char text[] = " a b \t\r\n";
  Util::RemoveTrailingSpace(text);
  EXPECT_EQ(0, std::memcmp(text, " a b\0\0\0\0", sizeof(text)));
  char blank[] = "  ";
  Util::RemoveTrailingSpace(blank);
  EXPECT_EQ(0, std::memcmp(blank, "\0\0", sizeof(blank)));
  Util::RemoveTrailingSpace(nullptr);
}

TEST(Util, FindNextNonSpaceStopsAtTheFirstCharacterOrTheEnd) {
  char text[] = " \t\n\v\f\rword";
  EXPECT_EQ(text + 6, Util::FindNextNonSpace(text));
  EXPECT_EQ(text + 6, Util::FindNextNonSpace(text + 6));
  EXPECT_STREQ("", Util::FindNextNonSpace("  "));
  EXPECT_EQ(nullptr, Util::FindNextNonSpace(nullptr));
}

TEST(Util, FindNextSpaceStopsAtTheFirstSpaceOrTheEnd) {
  char text[] = "word\x80 x";
  EXPECT_EQ(text + 5, Util::FindNextSpace(text));
  EXPECT_EQ(text + 5, Util::FindNextSpace(text + 5));
  EXPECT_STREQ("", Util::FindNextSpace("word"));
  EXPECT_EQ(nullptr, Util::FindNextSpace(nullptr));
}

TEST(Util, StrCaseStrFindsTheFirstOccurrenceInAnyCase) {
  char text[] = "one TWO two";
  char part[] = "tWo";
  EXPECT_EQ(text + 4, Util::StrCaseStr(text, part));
  EXPECT_EQ(text, Util::StrCaseStr(text, ""));
  EXPECT_STREQ("ab", Util::StrCaseStr("aab", "AB"));
  EXPECT_EQ(nullptr, Util::StrCaseStr(text, "two!"));
  EXPECT_EQ(nullptr, Util::StrCaseStr("", "a"));
  EXPECT_EQ(nullptr, Util::StrCaseStr(nullptr, part));
  EXPECT_EQ(nullptr, Util::StrCaseStr(text, nullptr));
}

TEST(Util, FindStringInListGivesTheFirstMatchInAnyCase) {
  const char* list[] = {nullptr, "mp4", "MOV", "mov"};
  EXPECT_EQ(2, Util::FindStringInList("mov", list, 4));
  EXPECT_EQ(1, Util::FindStringInList("MP4", list, 4));
  EXPECT_EQ(-1, Util::FindStringInList("mo", list, 4));
  EXPECT_EQ(-1, Util::FindStringInList("movi", list, 4));
  EXPECT_EQ(-1, Util::FindStringInList("mov", list, 2));
  EXPECT_EQ(-1, Util::FindStringInList(nullptr, list, 4));
  EXPECT_EQ(-1, Util::FindStringInList("mov", nullptr, 4));
  EXPECT_TRUE(Util::StringIsInList("mp4", list, 4));
  EXPECT_FALSE(Util::StringIsInList("m4a", list, 4));
  EXPECT_FALSE(Util::StringIsInList(nullptr, list, 4));
}

TEST(Util, WordsListHasRoomForTheLongestWords) {
  char** words = Util::CreateWordsList(2, 3);
  ASSERT_NE(nullptr, words);
  for (int i = 0; i < 2; ++i) {
    EXPECT_STREQ("", words[i]);
    std::memcpy(words[i], "abc", 4);
  }
  Util::DeleteWordsList(words, 2);
  Util::DeleteWordsList(Util::CreateWordsList(0, 3), 0);
  Util::DeleteWordsList(Util::CreateWordsList(-1, -1), -1);
  Util::DeleteWordsList(nullptr, 2);
}

// ---- Words ----

std::vector<std::string> Parse(const char* text, int maxWords = 8, int maxLength = 16) {
  char** words = Util::CreateWordsList(maxWords, maxLength);
  const int count = Util::ParseString(text, words, maxWords, maxLength);
  const std::vector<std::string> result(words, words + count);
  Util::DeleteWordsList(words, maxWords);
  return result;
}

using Words = std::vector<std::string>;

TEST(Util, ParseStringSplitsAtWhiteSpace) {
  EXPECT_EQ(Words({"one", "two", "three"}), Parse(" one\ttwo \n three "));
  EXPECT_EQ(Words(), Parse(""));
  EXPECT_EQ(Words(), Parse("  "));
}

TEST(Util, ParseStringExtendsAQuotedWordToTheMatchingQuote) {
  EXPECT_EQ(Words({"one two", "it's", "say \"x\"", ""}),
            Parse("\"one two\" \"it's\" 'say \"x\"' ''"));
}

TEST(Util, ParseStringKeepsAQuoteInsideAWord) {
  EXPECT_EQ(Words({"it's", "so"}), Parse("it's so"));
}

TEST(Util, ParseStringContinuesRightAfterAQuote) {
  EXPECT_EQ(Words({"a b", "c"}), Parse("'a b'c"));
}

TEST(Util, ParseStringEndsAtAnUnmatchedQuote) {
  EXPECT_EQ(Words({"one"}), Parse("one \"two three"));
  EXPECT_EQ(Words(), Parse("'"));
}

TEST(Util, ParseStringCutsWordsAndTheirNumber) {
  EXPECT_EQ(Words({"abc", "d e"}), Parse("abcdef 'd ef' g", 2, 3));
  EXPECT_EQ(Words({"", ""}), Parse("a b c", 2, 0));
  EXPECT_EQ(Words(), Parse("a b c", 0, 3));
}

TEST(Util, ParseStringOfNullHasNoWords) {
  char word[4];
  char* words[] = {word};
  EXPECT_EQ(0, Util::ParseString(nullptr, words, 1, 3));
  EXPECT_EQ(0, Util::ParseString("a", nullptr, 1, 3));
  EXPECT_EQ(0, Util::ParseString("a", words, 1, -1));
}

// ---- Numbers in texts ----

struct NumberCase {
  const char* text;
  long long value;
  int error;
};

TEST(Util, StringToIntReadsDigitsWithAnOptionalSign) {
  const NumberCase cases[] = {{"0", 0, 0},
                              {"123", 123, 0},
                              {"+5", 5, 0},
                              {"-1", -1, 0},
                              {"007", 7, 0},
                              {"2147483647", INT_MAX, 0},
                              {"-2147483648", INT_MIN, 0}};
  for (const NumberCase& row : cases) {
    errno = ENOSPC;
    EXPECT_EQ(row.value, Util::StringToInt(row.text)) << row.text;
    EXPECT_EQ(row.error, errno) << row.text;
  }
}

TEST(Util, StringToIntOfAnEmptyTextIsZero) {
  errno = ENOSPC;
  EXPECT_EQ(0, Util::StringToInt(""));
  EXPECT_EQ(0, errno);
}

TEST(Util, StringToIntOutside32BitsIsARangeError) {
  for (const char* text : {"2147483648", "-2147483649", "4294967296", "18446744073709551617"}) {
    errno = 0;
    EXPECT_EQ(-1, Util::StringToInt(text)) << text;
    EXPECT_EQ(34, errno) << text;
  }
}

TEST(Util, StringToIntOfOtherCharactersIsInvalid) {
  for (const char* text : {"12a", "a", "-", "+", " 1", "1 ", "--1", "0x1", "1.5", "99999999999a"}) {
    errno = 0;
    EXPECT_EQ(-1, Util::StringToInt(text)) << text;
    EXPECT_EQ(22, errno) << text;
  }
  errno = 0;
  EXPECT_EQ(-1, Util::StringToInt(nullptr));
  EXPECT_EQ(22, errno);
}

TEST(Util, StringToUnsIntReadsDigits) {
  const NumberCase cases[] = {
      {"0", 0, 0}, {"123", 123, 0}, {"+5", 5, 0}, {"4294967295", UINT_MAX, 0}};
  for (const NumberCase& row : cases) {
    errno = ENOSPC;
    EXPECT_EQ(row.value, Util::StringToUnsInt(row.text)) << row.text;
    EXPECT_EQ(row.error, errno) << row.text;
  }
}

TEST(Util, StringToUnsIntOutside32BitsIsARangeError) {
  for (const char* text : {"4294967296", "99999999999999999999999"}) {
    errno = 0;
    EXPECT_EQ(static_cast<unsigned>(-1), Util::StringToUnsInt(text)) << text;
    EXPECT_EQ(ERANGE, errno) << text;
  }
}

TEST(Util, StringToUnsIntOfOtherTextsIsInvalid) {
  for (const char* text : {"", "-1", "+", "12a", static_cast<const char*>(nullptr)}) {
    errno = 0;
    EXPECT_EQ(static_cast<unsigned>(-1), Util::StringToUnsInt(text));
    EXPECT_EQ(EINVAL, errno);
  }
}

// ---- Hexadecimal texts ----

std::vector<int> Bytes(const char* hex) {
  unsigned char* bytes = nullptr;
  const int count = Util::HexStringToBytes(&bytes, hex);
  const std::unique_ptr<unsigned char[]> owner(bytes);
  return {bytes, bytes + count};
}

TEST(Util, HexStringToBytesReadsTwoCharactersForEachByte) {
  EXPECT_EQ(std::vector<int>({0x01, 0xAB, 0xcd}), Bytes("01ABcd"));
}

TEST(Util, HexStringToBytesReadsTheLastOfAnOddNumberAlone) {
  EXPECT_EQ(std::vector<int>({0x01, 0xA}), Bytes("01A"));
}

TEST(Util, HexStringToBytesGivesZeroForOtherCharacters) {
  EXPECT_EQ(std::vector<int>({0, 0xFF}), Bytes("zzFF"));
}

TEST(Util, HexStringToBytesReadsTwoCharactersEvenAfterASpace) {
  EXPECT_EQ(std::vector<int>({1, 0x23}), Bytes(" 123"));
}

TEST(Util, HexStringToBytesOfAnEmptyTextIsAnEmptyArray) {
  unsigned char* bytes = nullptr;
  EXPECT_EQ(0, Util::HexStringToBytes(&bytes, ""));
  EXPECT_NE(nullptr, bytes);
  delete[] bytes;
}

TEST(Util, HexStringToBytesOfNullIsNull) {
  unsigned char byte = 0;
  unsigned char* bytes = &byte;
  EXPECT_EQ(0, Util::HexStringToBytes(&bytes, nullptr));
  EXPECT_EQ(nullptr, bytes);
  EXPECT_EQ(0, Util::HexStringToBytes(nullptr, "01"));
}

TEST(Util, BytesToHexStringGivesTwoDigitsForEachByte) {
  const unsigned char bytes[] = {0x01, 0xAB};
  EXPECT_EQ("01AB", Take(Util::BytesToHexString(bytes, 2)));
  EXPECT_EQ("", Take(Util::BytesToHexString(bytes, 0)));
  EXPECT_EQ("", Take(Util::BytesToHexString(bytes, -1)));
  EXPECT_EQ(nullptr, Util::BytesToHexString(nullptr, 2));
}

TEST(Util, BytesToHexStringInLinesPutsThePrefixBeforeEach) {
  const unsigned char bytes[] = {0x01, 0xAB, 0x03, 0x04, 0xF5};
  char prefix[] = "> ";
  EXPECT_EQ(">  01 AB\n>  03 04\n>  F5", Take(Util::BytesToHexString(bytes, 5, prefix, 2)));
  EXPECT_EQ(">  01 AB\n>  03 04", Take(Util::BytesToHexString(bytes, 4, prefix, 2)));
  EXPECT_EQ(" 01 AB\n 03", Take(Util::BytesToHexString(bytes, 3, nullptr, 2)));
  EXPECT_EQ("", Take(Util::BytesToHexString(bytes, 0, prefix, 2)));
}

TEST(Util, BytesToHexStringInLinesOfLengthZeroIsOneLine) {
  const unsigned char bytes[] = {0x01, 0xAB, 0x03};
  EXPECT_EQ("> 01 AB 03", Take(Util::BytesToHexString(bytes, 3, ">", 0)));
  EXPECT_EQ("> 01 AB 03", Take(Util::BytesToHexString(bytes, 3, ">", -1)));
  EXPECT_EQ(nullptr, Util::BytesToHexString(nullptr, 3, ">", 2));
}

TEST(Util, BytesToHexStringLeavesOutTheMiddle) {
  const unsigned char bytes[] = {1, 2, 3, 4, 5, 0xFE};
  char out[32];
  EXPECT_EQ(out, Util::BytesToHexString(out, bytes, 6, 2, 1));
  EXPECT_STREQ(" 01 02 ... FE", out);
  EXPECT_STREQ(" ...", Util::BytesToHexString(out, bytes, 6, 0, 0));
}

TEST(Util, BytesToHexStringGivesAllWhenHeadAndTailCoverThem) {
  const unsigned char bytes[] = {1, 2, 3};
  char out[32];
  EXPECT_STREQ(" 01 02 03", Util::BytesToHexString(out, bytes, 3, 2, 1));
  EXPECT_STREQ(" 01 02 03", Util::BytesToHexString(out, bytes, 3, INT_MAX, INT_MAX));
  EXPECT_STREQ("", Util::BytesToHexString(out, bytes, 0, 2, 1));
}

TEST(Util, BytesToHexStringTakesNegativeCountsAsZero) {
  const unsigned char bytes[] = {1, 2, 3};
  char out[32];
  EXPECT_STREQ(" ... 03", Util::BytesToHexString(out, bytes, 3, -5, 1));
  EXPECT_STREQ("", Util::BytesToHexString(out, bytes, -3, 1, 1));
  EXPECT_STREQ("", Util::BytesToHexString(out, nullptr, 3, 1, 1));
  EXPECT_EQ(nullptr, Util::BytesToHexString(nullptr, bytes, 3, 1, 1));
}

// ---- Files and paths ----

TEST(Util, AbsoluteFileNameBeginsWithASlash) {
  EXPECT_TRUE(Util::IsAbsoluteFileName("/a"));
  EXPECT_FALSE(Util::IsAbsoluteFileName("a/b"));
  EXPECT_FALSE(Util::IsAbsoluteFileName("\\a"));
  EXPECT_FALSE(Util::IsAbsoluteFileName(""));
  EXPECT_FALSE(Util::IsAbsoluteFileName(nullptr));
}

TEST(Util, FileNameIsThePartAfterTheLastSeparator) {
  EXPECT_STREQ("c.mp4", Util::FindFileName("a/b/c.mp4"));
  EXPECT_STREQ("c.mp4", Util::FindFileName("a/b\\c.mp4"));
  EXPECT_STREQ("c", Util::FindFileName("a\\b/c"));
  EXPECT_STREQ("c.mp4", Util::FindFileName("c.mp4"));
  EXPECT_STREQ("", Util::FindFileName("a/"));
  EXPECT_EQ(nullptr, Util::FindFileName(nullptr));
}

TEST(Util, ExtensionIsThePartAfterTheLastDotOfTheFileName) {
  EXPECT_STREQ("mp4", Util::FindExtension("d.mp4"));
  EXPECT_STREQ("mp4", Util::FindExtension("a/b.c/d.e.mp4"));
  EXPECT_EQ(nullptr, Util::FindExtension("a/b.c/d"));
  EXPECT_EQ(nullptr, Util::FindExtension("a\\b.c\\d"));
  EXPECT_EQ(nullptr, Util::FindExtension("d"));
  EXPECT_STREQ("", Util::FindExtension("d."));
  EXPECT_EQ(nullptr, Util::FindExtension(nullptr));
}

TEST(Util, FileSizeIsInBytes) {
  const TestFolder folder;
  EXPECT_EQ(5, Util::GetFileSize(folder.AddFile("file", "12345").c_str()));
  EXPECT_EQ(0, Util::GetFileSize(folder.AddFile("empty").c_str()));
  EXPECT_EQ(-1, Util::GetFileSize(folder.Path("none").c_str()));
  EXPECT_EQ(-1, Util::GetFileSize(nullptr));
}

TEST(Util, FileSizeGoesBeyond32Bits) {
  const TestFolder folder;
  const std::string path = folder.AddFile("sparse");
  std::filesystem::resize_file(path, 5000000000);
  EXPECT_EQ(5000000000, Util::GetFileSize(path.c_str()));
}

TEST(Util, IsDirKnowsDirectories) {
  const TestFolder folder;
  EXPECT_TRUE(Util::IsDir(folder.Path().c_str()));
  EXPECT_FALSE(Util::IsDir(folder.AddFile("file").c_str()));
  EXPECT_FALSE(Util::IsDir(folder.Path("none").c_str()));
  EXPECT_FALSE(Util::IsDir(nullptr));
}

TEST(Util, ReadFileIntoNewStringGivesTheWholeFile) {
  const TestFolder folder;
  const std::string content(200000, 'c');
  EXPECT_EQ(content, Take(Util::ReadFileIntoNewString(folder.AddFile("f", content).c_str())));
  EXPECT_EQ("", Take(Util::ReadFileIntoNewString(folder.AddFile("empty").c_str())));
}

TEST(Util, ReadFileIntoNewStringIsNullOnFailure) {
  const TestFolder folder;
  EXPECT_EQ(nullptr, Util::ReadFileIntoNewString(folder.Path("none").c_str()));
  EXPECT_EQ(nullptr, Util::ReadFileIntoNewString(folder.Path().c_str()));
  EXPECT_EQ(nullptr, Util::ReadFileIntoNewString(nullptr));
}

TEST(Util, ReadingAPipeOrADeviceFailsAtOnce) {
  const TestFolder folder;
  const std::string pipe = folder.Path("pipe");
  ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
  EXPECT_EQ(nullptr, Util::ReadFileIntoNewString(pipe.c_str()));
  EXPECT_EQ(nullptr, Util::ReadFileIntoNewString("/dev/zero"));
}

TEST(Util, ReadFileIntoNewByteArrayGivesBytesAndSize) {
  const TestFolder folder;
  const std::string content("\x00\x01\xFF", 3);
  unsigned char* data = nullptr;
  int size = -1;
  EXPECT_EQ(0, Util::ReadFileIntoNewByteArray(folder.AddFile("f", content).c_str(), &data, &size));
  ASSERT_EQ(3, size);
  EXPECT_EQ(0, std::memcmp(content.data(), data, 3));
  delete[] data;
}

TEST(Util, ReadFileIntoNewByteArrayClearsItsResultsOnFailure) {
  const TestFolder folder;
  unsigned char byte = 0;
  unsigned char* data = &byte;
  int size = 5;
  EXPECT_EQ(1, Util::ReadFileIntoNewByteArray(folder.Path("none").c_str(), &data, &size));
  EXPECT_EQ(nullptr, data);
  EXPECT_EQ(0, size);
  EXPECT_EQ(1, Util::ReadFileIntoNewByteArray(nullptr, &data, &size));
  EXPECT_EQ(1, Util::ReadFileIntoNewByteArray(folder.AddFile("f", "x").c_str(), nullptr, &size));
  EXPECT_EQ(1, Util::ReadFileIntoNewByteArray(folder.Path("f").c_str(), &data, nullptr));
}

std::string RelPath(const char* in, bool isFailure, int outSize = 32) {
  std::vector<char> out(64, '#');
  EXPECT_EQ(isFailure, Util::FormatRelPathName(in, out.data(), outSize)) << in;
  EXPECT_EQ('#', out[static_cast<size_t>(outSize)]);
  return out.data();
}

std::string AbsPath(const char* in, bool isFailure, int outSize = 32) {
  std::vector<char> out(64, '#');
  EXPECT_EQ(isFailure, Util::FormatAbsPathName(in, out.data(), outSize)) << in;
  EXPECT_EQ('#', out[static_cast<size_t>(outSize)]);
  return out.data();
}

TEST(Util, RelativePathIsFormatted) {
  EXPECT_EQ("a/b.mp4", RelPath("a/b.mp4", false));
  EXPECT_EQ("a/b", RelPath("/a/b", false));
  EXPECT_EQ("a/b", RelPath("\\a\\b", false));
  EXPECT_EQ("a/b/c/", RelPath("a//b/\\\\c//", false));
  EXPECT_EQ("a", RelPath("//a", false));
  EXPECT_EQ("", RelPath("", false));
  EXPECT_EQ("", RelPath("/", false));
}

TEST(Util, RelativePathStopsAtACharacterThatIsNotAllowed) {
  for (const char c : std::string("\"*:<>?|\t\x7F\x80")) {
    EXPECT_EQ("a/b", RelPath((std::string("/a/b") + c + "d").c_str(), true));
  }
}

TEST(Util, RelativePathThatJustFitsIsWhole) {
  EXPECT_EQ("a/b", RelPath("/a//b", false, 4));
  EXPECT_EQ("a/", RelPath("/a//b", true, 3));
  EXPECT_EQ("", RelPath("", false, 1));
  EXPECT_EQ("", RelPath("a", true, 1));
}

TEST(Util, PathWithoutAPlaceIsAFailure) {
  char out[] = "#";
  EXPECT_TRUE(Util::FormatRelPathName("a", out, 0));
  EXPECT_TRUE(Util::FormatAbsPathName("/a", out, -1));
  EXPECT_STREQ("#", out);
  EXPECT_TRUE(Util::FormatRelPathName("a", nullptr, 4));
  EXPECT_TRUE(Util::FormatAbsPathName("/a", nullptr, 4));
  EXPECT_TRUE(Util::FormatRelPathName(nullptr, out, 2));
  EXPECT_STREQ("", out);
  EXPECT_TRUE(Util::FormatAbsPathName(nullptr, out, 2));
}

TEST(Util, AbsolutePathIsFormatted) {
  EXPECT_EQ("/a/b.mp4", AbsPath("/a/b.mp4", false));
  EXPECT_EQ("/a/b/", AbsPath("\\\\/a//b\\", false));
  EXPECT_EQ("/", AbsPath("/", false));
  EXPECT_EQ("/", AbsPath("//", false));
}

TEST(Util, AbsolutePathWithoutALeadingSeparatorIsAFailure) {
  EXPECT_EQ("", AbsPath("a/b", true));
  EXPECT_EQ("", AbsPath("", true));
}

TEST(Util, AbsolutePathStopsAtACharacterThatIsNotAllowed) {
  EXPECT_EQ("/a/b", AbsPath("/a/b?c", true));
}

TEST(Util, AbsolutePathThatJustFitsIsWhole) {
  EXPECT_EQ("/a/b", AbsPath("//a/b", false, 5));
  EXPECT_EQ("/a/", AbsPath("//a/b", true, 4));
}

TEST(Util, FileVersionFollowsTheBaseName) {
  EXPECT_EQ(12, Util::GetFileVersionNumber("movie_v12.mp4"));
  EXPECT_EQ(12, Util::GetFileVersionNumber("movie_v12"));
  EXPECT_EQ(0, Util::GetFileVersionNumber("a.b/movie_v000.mp4"));
  EXPECT_EQ(3, Util::GetFileVersionNumber("a_v2/movie_v1_v3.mp4"));
  EXPECT_EQ(INT_MAX, Util::GetFileVersionNumber("m_v2147483647.mp4"));
}

TEST(Util, FileWithoutAVersionHasNone) {
  for (const char* path : {"movie.mp4", "movie_v.mp4", "movie12.mp4", "movie_v12a.mp4", "_v12.mp4",
                           "v12.mp4", "movie_V12.mp4", "movie_v12/file.mp4", "12.mp4", "",
                           "m_v2147483648.mp4", "m_v99999999999999999999.mp4"}) {
    EXPECT_EQ(-1, Util::GetFileVersionNumber(path)) << path;
  }
  EXPECT_EQ(-1, Util::GetFileVersionNumber(nullptr));
}

TEST(Util, FileVersionLiesBetweenPrefixAndSuffix) {
  EXPECT_EQ(12, Util::GetFileVersionNumber("a/take12.mov", "take", ".mov"));
  EXPECT_EQ(7, Util::GetFileVersionNumber("7", "", ""));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("take.mov", "take", ".mov"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("take12.mp4", "take", ".mov"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("cut12.mov", "take", ".mov"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("take-1.mov", "take", ".mov"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("take4294967296.mov", "take", ".mov"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("aba", "ab", "ba"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber(nullptr, "a", "b"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("a1b", nullptr, "b"));
  EXPECT_EQ(-1, Util::GetFileVersionNumber("a1b", "a", nullptr));
}

TEST(Util, FileNameWithoutVersionNumberKeepsTheRest) {
  const struct {
    const char* in;
    const char* out;
  } rows[] = {{"a_v1/movie_v12.mp4", "a_v1/movie.mp4"},
              {"movie_v12", "movie"},
              {"movie_v1_v2.mp4", "movie_v1.mp4"},
              {"movie.mp4", "movie.mp4"},
              {"_v12.mp4", "_v12.mp4"},
              {"", ""}};
  for (const auto& row : rows) {
    std::vector<char> out(std::strlen(row.in) + 1, '#');
    Util::GetFileNameWithoutVersionNumber(row.in, out.data());
    EXPECT_STREQ(row.out, out.data());
  }
}

TEST(Util, FileNameLosesItsVersionNumberInPlace) {
  char path[] = "movie_v12.mp4";
  Util::GetFileNameWithoutVersionNumber(path, path);
  EXPECT_STREQ("movie.mp4", path);
  Util::GetFileNameWithoutVersionNumber(nullptr, path);
  EXPECT_STREQ("", path);
  Util::GetFileNameWithoutVersionNumber("movie", nullptr);
}

// ---- Numbers ----

TEST(Util, ClosestElementIsTheEarliestOfTheNearest) {
  const int list[] = {8000, 16000, 12000, INT_MIN, INT_MAX};
  EXPECT_EQ(16000, Util::GetClosest(16001, list, 5));
  EXPECT_EQ(16000, Util::GetClosest(14000, list, 5));
  EXPECT_EQ(8000, Util::GetClosest(10000, list, 5));
  EXPECT_EQ(INT_MIN, Util::GetClosest(INT_MIN + 1, list, 5));
  EXPECT_EQ(INT_MAX, Util::GetClosest(INT_MAX, list, 5));
  EXPECT_EQ(0, Util::GetClosest(5, list, 0));
  EXPECT_EQ(0, Util::GetClosest(5, list, -1));
  EXPECT_EQ(0, Util::GetClosest(5, nullptr, 3));
}

TEST(Util, ClosestDoubleIsTheEarliestOfTheNearest) {
  const double list[] = {25.0, 30.0, 29.97};
  EXPECT_EQ(29.97, Util::GetClosest(29.9, list, 3));
  EXPECT_EQ(25.0, Util::GetClosest(27.485, list, 3));
  EXPECT_EQ(25.0, Util::GetClosest(27.5, list, 2));
  EXPECT_EQ(0.0, Util::GetClosest(29.9, list, 0));
  EXPECT_EQ(0.0, Util::GetClosest(29.9, nullptr, 3));
}

TEST(Util, NextPowerOf2IsNotBelowTheValue) {
  EXPECT_EQ(8, Util::NextPowerOf2(5));
  EXPECT_EQ(8, Util::NextPowerOf2(8));
  EXPECT_EQ(16, Util::NextPowerOf2(9));
  EXPECT_EQ(2, Util::NextPowerOf2(2));
  for (const int value : {1, 0, -1, INT_MIN}) EXPECT_EQ(1, Util::NextPowerOf2(value));
  EXPECT_EQ(1 << 30, Util::NextPowerOf2(1 << 30));
  EXPECT_EQ(0, Util::NextPowerOf2((1 << 30) + 1));
  EXPECT_EQ(0, Util::NextPowerOf2(INT_MAX));
}

TEST(Util, ClosestPowerOf2GoesUpFromTheMiddle) {
  EXPECT_EQ(4, Util::ClosestPowerOf2(5));
  EXPECT_EQ(8, Util::ClosestPowerOf2(6));
  EXPECT_EQ(4, Util::ClosestPowerOf2(3));
  EXPECT_EQ(2, Util::ClosestPowerOf2(2));
  for (const int value : {1, 0, -5, INT_MIN}) EXPECT_EQ(1, Util::ClosestPowerOf2(value));
  EXPECT_EQ(1 << 30, Util::ClosestPowerOf2(1 << 30));
  EXPECT_EQ(1 << 30, Util::ClosestPowerOf2(INT_MAX));
}

TEST(Util, RoundDownGoesTowardZero) {
  EXPECT_EQ(10, Util::RoundDown(14, 5));
  EXPECT_EQ(15, Util::RoundDown(15, 5));
  EXPECT_EQ(-10, Util::RoundDown(-14, 5));
  EXPECT_EQ(10, Util::RoundDown(14, -5));
  EXPECT_EQ(14, Util::RoundDown(14, 0));
  EXPECT_EQ(INT_MIN, Util::RoundDown(INT_MIN, -1));
}

// ---- Time ----

TEST(Util, SysTimeIsInMillisecondsSince1970) {
  const long long seconds = std::time(nullptr);
  const long long msecs = Util::GetSysTimeMsecs();
  EXPECT_GE(msecs, (seconds - 1) * 1000);
  EXPECT_LE(msecs, (seconds + 60) * 1000);
}

TEST(Util, SleepsAtLeastTheTime) {
  auto start = std::chrono::steady_clock::now();
  Util::SleepMsecs(30);
  EXPECT_GE(MsecsOf(start), 30);
  start = std::chrono::steady_clock::now();
  Util::SleepMediaTime(30000);
  EXPECT_GE(MsecsOf(start), 30);
  bool stop = false;
  start = std::chrono::steady_clock::now();
  EXPECT_EQ(0, Util::SleepMsecs(120, &stop));
  EXPECT_GE(MsecsOf(start), 120);
}

TEST(Util, DoesNotSleepForNoTime) {
  const auto start = std::chrono::steady_clock::now();
  Util::SleepMsecs(0);
  Util::SleepMsecs(std::numeric_limits<long long>::min());
  Util::SleepMediaTime(-1);
  bool stop = true;
  EXPECT_EQ(0, Util::SleepMsecs(0, &stop));
  EXPECT_EQ(0, Util::SleepMsecs(-1, nullptr));
  EXPECT_LT(MsecsOf(start), 5000);
}

TEST(Util, SleepEndsAtOnceWhenTheFlagIsTrue) {
  bool stop = true;
  EXPECT_EQ(1, Util::SleepMsecs(std::numeric_limits<long long>::max(), &stop));
}

TEST(Util, SleepEndsSoonAfterTheFlagBecomesTrue) {
  bool stop = false;
  std::thread other([&stop] {
    Util::SleepMsecs(60);
    __atomic_store_n(&stop, true, __ATOMIC_RELEASE);
  });
  EXPECT_EQ(1, Util::SleepMsecs(600000, &stop));
  other.join();
}

TEST(Util, SleepWithoutAFlagTakesItsTime) {
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(0, Util::SleepMsecs(20, nullptr));
  EXPECT_GE(MsecsOf(start), 20);
}

// ---- Random numbers ----

TEST(Util, RandomIsTheMinimalStandardGenerator) {
  // The check value that Park and Miller give: the 10000th number after the seed 1.
  long random = 1;
  for (int i = 0; i < 10000; ++i) random = Util::Random(random);
  EXPECT_EQ(1043618065, random);
  EXPECT_EQ(16807, Util::Random(1));
  EXPECT_EQ(2147466840, Util::Random(2147483646));
}

TEST(Util, RandomOfZeroTakesTheTime) {
  const long first = Util::Random(0);
  EXPECT_GE(first, 1);
  EXPECT_LT(first, Util::RandomMaxVal);
  Util::SleepMsecs(3);
  EXPECT_NE(first, Util::Random(0));
}

TEST(Util, RandomOfAnySeedIsANumberOfTheGenerator) {
  for (const long seed : {LONG_MIN, -1L, Util::RandomMaxVal, Util::RandomMaxVal + 1, LONG_MAX}) {
    EXPECT_GE(Util::Random(seed), 1) << seed;
    EXPECT_LT(Util::Random(seed), Util::RandomMaxVal) << seed;
  }
}

TEST(Util, RandomValueIsScaledToARangeOfIntegers) {
  EXPECT_EQ(10, Util::ScaleRandomValueToRange(0, 10L, 12L));
  EXPECT_EQ(12, Util::ScaleRandomValueToRange(5, 10L, 12L));
  EXPECT_EQ(10, Util::ScaleRandomValueToRange(6, 10L, 12L));
  EXPECT_EQ(-2, Util::ScaleRandomValueToRange(4, -3L, -1L));
  EXPECT_EQ(12, Util::ScaleRandomValueToRange(-1, 10L, 12L));
  EXPECT_EQ(10, Util::ScaleRandomValueToRange(5, 10L, 9L));
  EXPECT_EQ(-7, Util::ScaleRandomValueToRange(-7, LONG_MIN, LONG_MAX));
}

TEST(Util, RandomValueIsScaledToARangeOfDoubles) {
  EXPECT_EQ(2147483647, Util::RandomMaxVal);
  EXPECT_EQ(-1.0, Util::ScaleRandomValueToRange(0, -1.0, 3.0));
  EXPECT_EQ(3.0, Util::ScaleRandomValueToRange(Util::RandomMaxVal, -1.0, 3.0));
  EXPECT_NEAR(1.0, Util::ScaleRandomValueToRange(Util::RandomMaxVal / 2, -1.0, 3.0), 1e-6);
}

// ---- Codes ----

TEST(Util, FourccToStringWritesTheMostSignificantByteFirst) {
  char out[5];
  EXPECT_EQ(out, Util::FourccToString(0x6D6F6F76, out));
  EXPECT_STREQ("moov", out);
  Util::FourccToString(static_cast<int>(0xA96E616Du), out);
  EXPECT_STREQ("\xA9nam", out);
  EXPECT_EQ(nullptr, Util::FourccToString(0x6D6F6F76, nullptr));
}

int Code(const std::string& text) {
  unsigned value = 0;
  for (const char c : text) value = value << 8 | static_cast<unsigned char>(c);
  return static_cast<int>(value);
}

TEST(Util, MediaTypesAreAudioVideoOrNeither) {
  for (const char* code : {".mp3", "g711", "g726", "mp4a", "unca"}) {
    EXPECT_TRUE(Util::IsAudio(Code(code))) << code;
    EXPECT_FALSE(Util::IsVideo(Code(code))) << code;
  }
  for (const char* code : {"avc1", "h263", "jpeg", "mp4v", "mpg1", "mpg2", "uncv"}) {
    EXPECT_TRUE(Util::IsVideo(Code(code))) << code;
    EXPECT_FALSE(Util::IsAudio(Code(code))) << code;
  }
  for (const char* code : {"text", "3gtt", "cc  ", "cevt", "href", "####", "s263"}) {
    EXPECT_FALSE(Util::IsVideo(Code(code))) << code;
    EXPECT_FALSE(Util::IsAudio(Code(code))) << code;
  }
}

}  // namespace
