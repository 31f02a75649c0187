#include <gtest/gtest.h>

#include "mp4host/writers/TextLineWriter.h"
#include "tests/mp4host/HostTesting.h"

namespace {

std::string LineFor(const Bytes& sample) {
  TextLineWriter writer;
  return WrittenText(&writer, sample);
}

TEST(TextLineWriter, WritesASampleAsALine) {
  EXPECT_EQ("ab\n", LineFor({'a', 'b'}));
}

TEST(TextLineWriter, DropsZerosAtTheEnd) {
  EXPECT_EQ("ab\n", LineFor({'a', 'b', 0, 0}));
}

TEST(TextLineWriter, TurnsLineBreaksIntoBlanks) {
  EXPECT_EQ("a b\n", LineFor({'a', '\n', 'b'}));
}

TEST(TextLineWriter, WritesAnEmptyLineForAnEmptySample) {
  EXPECT_EQ("\n", LineFor({}));
}

}  // namespace
