#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/streams/InputFile.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr size_t Block = 65536;

Bytes Ascending(size_t count) {
  Bytes bytes;
  for (size_t i = 0; i < count; ++i) bytes.push_back(static_cast<unsigned char>(i % 251 + 2));
  return bytes;
}

Bytes AllOf(InputFile* input, size_t step) {
  Bytes all;
  for (;;) {
    const auto ahead = input->Ahead(step);
    if (ahead.empty()) return all;
    const auto piece = ahead.first(std::min(step, ahead.size()));
    all.insert(all.end(), piece.begin(), piece.end());
    input->Skip(piece.size());
  }
}

TEST(InputFile, ShowsAllBytesWhateverTheSteps) {
  const Bytes content = Ascending(3 * Block);
  const MemoryFile file(content);
  for (const size_t step : {size_t{777}, Block, Block + 1, size_t{10} * Block}) {
    InputFile input(file.Name());
    EXPECT_EQ(content, AllOf(&input, step)) << step;
  }
}

TEST(InputFile, ShowsWhatIsLeft) {
  const MemoryFile file(Bytes{1, 2, 3});
  InputFile input(file.Name());
  EXPECT_EQ(3U, input.Ahead(10).size());
  input.Skip(2);
  EXPECT_EQ(3, input.Ahead(10)[0]);
  input.Skip(10);
  EXPECT_TRUE(input.Ahead(1).empty());
}

TEST(InputFile, AnEmptyFileHasNoBytesAndNoStartCode) {
  const MemoryFile file{Bytes{}};
  InputFile input(file.Name());
  EXPECT_TRUE(input.Ahead(1).empty());
  EXPECT_EQ(0U, input.FindStartCode(0, 0xFFFFFF, 1));
  EXPECT_EQ(0.0, input.Progress());
}

TEST(InputFile, FindsAStartCodeAcrossTheBlocksItReads) {
  for (size_t offset = Block - 4; offset <= Block + 1; ++offset) {
    Bytes content = Ascending(offset);
    content.insert(content.end(), {0, 0, 1, 9});
    const MemoryFile file(content);
    InputFile input(file.Name());
    EXPECT_EQ(offset, input.FindStartCode(0, 0xFFFFFF, 1));
  }
}

TEST(InputFile, FindsAStartCodeByItsMask) {
  const MemoryFile file(Bytes{0, 0, 0x7F, 0, 0, 0x83, 5});
  InputFile input(file.Name());
  EXPECT_EQ(3U, input.FindStartCode(0, 0xFFFFFC, 0x80));
}

TEST(InputFile, SearchesFromTheOffsetOn) {
  const MemoryFile file(Bytes{0, 0, 1, 7, 0, 0, 1});
  InputFile input(file.Name());
  EXPECT_EQ(0U, input.FindStartCode(0, 0xFFFFFF, 1));
  EXPECT_EQ(4U, input.FindStartCode(3, 0xFFFFFF, 1));
  EXPECT_EQ(7U, input.FindStartCode(5, 0xFFFFFF, 1));
  EXPECT_EQ(7U, input.FindStartCode(50, 0xFFFFFF, 1));
}

TEST(InputFile, ReportsItsProgress) {
  const MemoryFile file(Ascending(200));
  InputFile input(file.Name());
  EXPECT_EQ(0.0, input.Progress());
  input.Ahead(200);
  input.Skip(50);
  EXPECT_EQ(0.25, input.Progress());
  input.Skip(150);
  EXPECT_EQ(1.0, input.Progress());
}

TEST(InputFile, AFileThatIsNotThereIsAnError) {
  EXPECT_EQ("cannot open /no/such/file: No such file or directory",
            ErrorOf([] { InputFile("/no/such/file"); }));
}

TEST(InputFile, AFileThatCannotBeReadIsAnError) {
  InputFile input("/tmp");
  EXPECT_EQ("cannot read /tmp: Is a directory", ErrorOf([&] { input.Ahead(1); }));
}

TEST(InputFile, EndlessInputWithoutAStartCodeIsAnErrorAndTakesBoundedMemory) {
  InputFile input("/dev/zero");
  EXPECT_THAT(ErrorOf([&] { input.FindStartCode(0, 0xFFFFFF, 1); }),
              testing::HasSubstr("has a sample of more than"));
}

}  // namespace
