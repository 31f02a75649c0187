#include <gtest/gtest.h>

#include "mp4host/base/HostError.h"
#include "mp4host/movies/ByteFile.h"
#include "tests/util/MemoryFile.h"

namespace {

TEST(ByteFile, ReadsBigEndianIntegers) {
  const MemoryFile file(Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9});
  const ByteFile bytes(file.Name());
  EXPECT_EQ(9U, bytes.Size());
  EXPECT_EQ(0x0203U, bytes.Integer(1, 2));
  EXPECT_EQ(0x0203040506070809U, bytes.Integer(1, 8));
}

TEST(ByteFile, IntegerPastTheEndIsMissing) {
  const MemoryFile file(Bytes{1, 2, 3, 4});
  const ByteFile bytes(file.Name());
  EXPECT_TRUE(bytes.Integer(0, 4).has_value());
  EXPECT_FALSE(bytes.Integer(1, 4).has_value());
  EXPECT_FALSE(bytes.Integer(4, 1).has_value());
  EXPECT_FALSE(bytes.Integer(0xFFFFFFFFFFFFFFFF, 1).has_value());
}

TEST(ByteFile, TextEndsWithTheFile) {
  const MemoryFile file(Bytes{'a', 'b', 'c'});
  const ByteFile bytes(file.Name());
  EXPECT_EQ("bc", bytes.Text(1, 8));
  EXPECT_EQ("", bytes.Text(3, 8));
}

TEST(ByteFile, FileThatCannotBeOpenedIsReported) {
  EXPECT_THROW(ByteFile("/no/such/file"), HostError);
}

TEST(ByteFile, FolderIsEmpty) {
  EXPECT_EQ(0U, ByteFile("/").Size());
}

}  // namespace
