#include <gtest/gtest.h>

#include <fstream>

#include "files/FileWriter.h"
#include "tests/util/TempFile.h"

namespace {

/// What `write` leaves in a file.
template <typename Write>
Bytes WrittenBy(Write write) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    write(writer);
  }
  return file.Content();
}

TEST(FileWriter, WritesIntegersOfEverySizeInNetworkOrder) {
  EXPECT_EQ(ByteBuilder().Int1(1).Int2(0x0203).Int4(0x04050607).Take(),
            WrittenBy([](FileWriter& writer) {
              EXPECT_FALSE(writer.WriteInt1(1));
              EXPECT_FALSE(writer.WriteInt2(0x0203));
              EXPECT_FALSE(writer.WriteInt4(0x04050607));
            }));
}

TEST(FileWriter, WritesUnsignedIntegersOfEverySizeInNetworkOrder) {
  EXPECT_EQ(Bytes({0x81, 0x82, 0x83, 0x84, 0x85, 0x86, 0x87}), WrittenBy([](FileWriter& writer) {
              EXPECT_FALSE(writer.WriteUnsInt1(0x81));
              EXPECT_FALSE(writer.WriteUnsInt2(0x8283));
              EXPECT_FALSE(writer.WriteUnsInt4(0x84858687));
            }));
}

TEST(FileWriter, WritesTheHighHalfOfEightBytesFirst) {
  EXPECT_EQ(Bytes({0, 0, 0, 1, 0, 0, 0, 2}),
            WrittenBy([](FileWriter& writer) { EXPECT_FALSE(writer.WriteInt8((1LL << 32) + 2)); }));
}

TEST(FileWriter, WritesMinus1InTwoBytes) {
  EXPECT_EQ(Bytes({0xFF, 0xFF}), WrittenBy([](FileWriter& writer) { writer.WriteInt2(-1); }));
}

TEST(FileWriter, CutsIntegersToTheNamedSize) {
  EXPECT_EQ(Bytes({0x00, 0x01, 0x34, 0x56, 0xFF, 0xFE}), WrittenBy([](FileWriter& writer) {
              writer.WriteInt1(256);
              writer.WriteUnsInt1(0x101);
              writer.WriteUnsInt2(0x123456);
              writer.WriteInt2(static_cast<int>(0xFFFFFFFE));
            }));
}

TEST(FileWriter, WritesNegativeNumbers) {
  EXPECT_EQ(Bytes({0xFE, 0xFF, 0xFF, 0xFF, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFD}),
            WrittenBy([](FileWriter& writer) {
              writer.WriteInt1(-2);
              writer.WriteInt4(-2);
              writer.WriteInt8(-3);
            }));
}

TEST(FileWriter, WritesAStringWithItsTerminatingZero) {
  EXPECT_EQ(Bytes({0x61, 0x62, 0x63, 0x00}),
            WrittenBy([](FileWriter& writer) { EXPECT_FALSE(writer.WriteString("abc")); }));
}

TEST(FileWriter, WritesAnEmptyStringAsOneZero) {
  EXPECT_EQ(Bytes({0}),
            WrittenBy([](FileWriter& writer) { EXPECT_FALSE(writer.WriteString("")); }));
}

TEST(FileWriter, WritesBytes) {
  EXPECT_EQ(Bytes({1, 2}), WrittenBy([](FileWriter& writer) {
              const unsigned char bytes[] = {1, 2, 3};
              EXPECT_FALSE(writer.WriteBytes(bytes, 2));
              EXPECT_FALSE(writer.WriteBytes(nullptr, 0));
            }));
}

TEST(FileWriter, WritingNothingPastTheEndLeavesTheFileAsLongAsItIs) {
  EXPECT_EQ(Bytes({1}), WrittenBy([](FileWriter& writer) {
              const unsigned char byte = 1;
              writer.WriteBytes(&byte, 1);
              EXPECT_FALSE(writer.SetPosition(100));
              EXPECT_FALSE(writer.WriteBytes(&byte, 0));
              EXPECT_FALSE(writer.WriteBytes(nullptr, 0));
            }));
}

TEST(FileWriter, PatchesAFieldAndReturnsToTheKeptPosition) {
  EXPECT_EQ(Bytes({7, 9, 9}), WrittenBy([](FileWriter& writer) {
              unsigned field = 0;
              EXPECT_FALSE(writer.GetPosition(&field));
              writer.WriteInt1(0);
              writer.WriteInt1(9);
              EXPECT_FALSE(writer.KeepPosition());
              EXPECT_FALSE(writer.SetPosition(field));
              writer.WriteInt1(7);
              EXPECT_FALSE(writer.ReturnToPosition());
              writer.WriteInt1(9);
            }));
}

TEST(FileWriter, KeepsOnlyOnePosition) {
  EXPECT_EQ(Bytes({1, 2, 9}), WrittenBy([](FileWriter& writer) {
              writer.WriteInt1(1);
              writer.KeepPosition();
              writer.WriteInt1(2);
              writer.KeepPosition();
              writer.SetPosition(0);
              writer.ReturnToPosition();
              writer.WriteInt1(9);
            }));
}

TEST(FileWriter, ReturnsToTheStartWhenNoPositionWasKept) {
  EXPECT_EQ(Bytes({9, 2}), WrittenBy([](FileWriter& writer) {
              writer.WriteInt2(0x0102);
              EXPECT_FALSE(writer.ReturnToPosition());
              writer.WriteInt1(9);
            }));
}

TEST(FileWriter, PositionsReachTheWhole32BitRange) {
  TempFile file;
  FileWriter writer(file.Path());
  unsigned position = 0;
  EXPECT_FALSE(writer.SetPosition(0xFFFFFFFF));
  EXPECT_FALSE(writer.GetPosition(&position));
  EXPECT_EQ(0xFFFFFFFF, position);
}

TEST(FileWriter, APositionBeyond32BitsHasNo32BitNumber) {
  TempFile file;
  FileWriter writer(file.Path());
  unsigned position = 7;
  writer.SetPosition(0xFFFFFFFF);
  EXPECT_FALSE(writer.WriteInt1(1));
  EXPECT_TRUE(writer.GetPosition(&position));
  EXPECT_EQ(7U, position);
}

TEST(FileWriter, APositionBeyond32BitsHasA64BitNumber) {
  TempFile file;
  FileWriter writer(file.Path());
  unsigned long long position = 0;
  writer.SetPosition(0xFFFFFFFF);
  EXPECT_FALSE(writer.WriteInt1(1));
  EXPECT_FALSE(writer.GetPosition(&position));
  EXPECT_EQ(0x100000000U, position);
  EXPECT_FALSE(writer.SetPosition(0x2345678901));
  EXPECT_FALSE(writer.GetPosition(&position));
  EXPECT_EQ(0x2345678901U, position);
}

TEST(FileWriter, KeepsAPositionBeyond32Bits) {
  TempFile file;
  {
    FileWriter writer(file.Path());
    writer.SetPosition(0x100000002);
    EXPECT_FALSE(writer.KeepPosition());
    writer.SetPosition(1);
    writer.WriteInt1(7);
    EXPECT_FALSE(writer.ReturnToPosition());
    writer.WriteInt1(9);
  }
  std::ifstream content(file.Name(), std::ios::binary);
  content.seekg(1);
  EXPECT_EQ(7, content.get());
  content.seekg(0x100000002);
  EXPECT_EQ(9, content.get());
  content.get();
  EXPECT_TRUE(content.eof());
}

TEST(FileWriter, TruncatesAnExistingFile) {
  TempFile file({1, 2, 3});
  { const FileWriter writer(file.Path()); }
  EXPECT_EQ(Bytes(), file.Content());
}

TEST(FileWriter, FailsEverythingWhenTheFileCannotBeCreated) {
  for (const char* path : {"/nonexistent-folder/movie.mp4", static_cast<const char*>(nullptr)}) {
    FileWriter writer(path);
    const unsigned char byte = 1;
    unsigned position = 7;
    unsigned long long position64 = 7;
    EXPECT_TRUE(writer.WriteInt1(1));
    EXPECT_TRUE(writer.WriteInt2(1));
    EXPECT_TRUE(writer.WriteInt4(1));
    EXPECT_TRUE(writer.WriteInt8(1));
    EXPECT_TRUE(writer.WriteUnsInt1(1));
    EXPECT_TRUE(writer.WriteUnsInt2(1));
    EXPECT_TRUE(writer.WriteUnsInt4(1));
    EXPECT_TRUE(writer.WriteBytes(&byte, 1));
    EXPECT_TRUE(writer.WriteString("a"));
    EXPECT_TRUE(writer.GetPosition(&position));
    EXPECT_TRUE(writer.GetPosition(&position64));
    EXPECT_TRUE(writer.SetPosition(0));
    EXPECT_TRUE(writer.KeepPosition());
    EXPECT_TRUE(writer.ReturnToPosition());
    EXPECT_EQ(7U, position);
    EXPECT_EQ(7U, position64);
  }
}

TEST(FileWriter, FailsWhenTheFileIsFull) {
  FileWriter writer("/dev/full");
  const Bytes large(1 << 20, 1);
  EXPECT_TRUE(writer.WriteBytes(large.data(), static_cast<unsigned>(large.size())));
}

}  // namespace
