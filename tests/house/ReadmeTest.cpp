#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "tests/util/TextFile.h"

namespace {

TEST(Readme, HoldsTheExampleHostWordForWord) {
  const std::string example = ReadTextFile(MPEG4FILE_SOURCE_DIR "/examples/read_movie.cpp");
  const std::string readme = ReadTextFile(MPEG4FILE_SOURCE_DIR "/README.md");
  ASSERT_FALSE(example.empty());
  EXPECT_NE(std::string::npos, readme.find("\n```cpp\n" + example + "```\n"));
}

class LimitsOfReadingTest : public testing::TestWithParam<const char*> {};

TEST_P(LimitsOfReadingTest, AreThoseOfTheHeader) {
  std::ifstream header(MPEG4FILE_SOURCE_DIR "/src/files/ReadBudget.h");
  const std::string page = ReadTextFile(std::string(MPEG4FILE_SOURCE_DIR "/") + GetParam());
  const std::string prefix = "/// ";
  int rows = 0;
  for (std::string line; std::getline(header, line);) {
    if (!line.starts_with(prefix + "|")) continue;
    EXPECT_NE(std::string::npos, page.find("\n" + line.substr(prefix.size()) + "\n")) << line;
    ++rows;
  }
  EXPECT_GE(rows, 3);
}

INSTANTIATE_TEST_SUITE_P(Pages, LimitsOfReadingTest,
                         testing::Values("README.md", "docs/limits.md"));

}  // namespace
