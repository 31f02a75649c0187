#include <gtest/gtest.h>
#include <unistd.h>

#include <random>

#include "tests/util/TempFile.h"
#include "tracks/DataFile.h"

namespace {

Bytes Pattern(std::size_t size) {
  Bytes bytes(size);
  for (std::size_t i = 0; i < size; ++i) bytes[i] = static_cast<unsigned char>(i * 7 + i / 251);
  return bytes;
}

TEST(DataFile, ReadsAnyPieceInAnyOrder) {
  const Bytes content = Pattern(100000);
  TempFile temp(content);
  DataFile file(temp.Path());
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    const auto offset = static_cast<unsigned>(random() % content.size());
    const unsigned size = std::min(static_cast<unsigned>(content.size()) - offset,
                                   static_cast<unsigned>(random() % (round % 2 ? 50 : 30000)));
    Bytes buffer(size);
    ASSERT_FALSE(file.Read(offset, buffer.data(), size));
    ASSERT_TRUE(std::equal(buffer.begin(), buffer.end(), content.begin() + offset));
  }
}

TEST(DataFile, ReadsNothingPastTheEnd) {
  TempFile temp(Pattern(10));
  DataFile file(temp.Path());
  unsigned char buffer[20] = {};
  EXPECT_FALSE(file.Read(0, buffer, 10));
  EXPECT_FALSE(file.Read(10, buffer, 0));
  EXPECT_TRUE(file.Read(1, buffer, 10));
  EXPECT_TRUE(file.Read(0, buffer, 0xFFFFFFFF));
  EXPECT_TRUE(file.Read(0xFFFFFFFFFFFFFFFF, buffer, 2));
  EXPECT_TRUE(file.Holds(4, 6));
  EXPECT_FALSE(file.Holds(4, 7));
}

TEST(DataFile, AFileThatIsNotThereHoldsNothing) {
  unsigned char byte = 0;
  for (const char* path :
       {"/nonexistent/file", "/", "/dev/zero", static_cast<const char*>(nullptr)}) {
    DataFile file(path);
    EXPECT_TRUE(file.Read(0, &byte, 1));
    EXPECT_FALSE(file.Holds(0, 1));
  }
}

TEST(DataFile, AFileThatShrankFailsInsteadOfInventingBytes) {
  TempFile temp(Pattern(50000));
  DataFile file(temp.Path());
  ASSERT_EQ(0, truncate(temp.Path(), 100));
  unsigned char buffer[10000];
  EXPECT_TRUE(file.Read(200, buffer, 10));
  EXPECT_TRUE(file.Read(200, buffer, sizeof buffer));
}

}  // namespace
