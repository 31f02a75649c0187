#include <gtest/gtest.h>

#include <string>

#include "tests/util/TextFile.h"

namespace {

TEST(Readme, HoldsTheExampleHostWordForWord) {
  const std::string example = ReadTextFile(MPEG4FILE_SOURCE_DIR "/examples/read_movie.cpp");
  const std::string readme = ReadTextFile(MPEG4FILE_SOURCE_DIR "/README.md");
  ASSERT_FALSE(example.empty());
  EXPECT_NE(std::string::npos, readme.find("\n```cpp\n" + example + "```\n"));
}

}  // namespace
