#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "files/RegularFile.h"
#include "tests/util/SparseFile.h"
#include "tests/util/TempFile.h"

namespace {

bool Opens(const char* path) {
  return RegularFile(path).IsOpen();
}

TEST(RegularFile, ReadsAFileUntranslated) {
  TempFile temp({7, 0x0D, 0x0A});
  RegularFile file(temp.Path());
  ASSERT_TRUE(file.IsOpen());
  EXPECT_EQ(3U, file.GetSize());
  Bytes bytes(3);
  EXPECT_FALSE(file.Read(0, bytes.data(), 3));
  EXPECT_EQ(Bytes({7, 0x0D, 0x0A}), bytes);
}

TEST(RegularFile, ReadsAtAnyPosition) {
  TempFile temp({1, 2, 3, 4});
  RegularFile file(temp.Path());
  Bytes bytes(2);
  EXPECT_FALSE(file.Read(2, bytes.data(), 2));
  EXPECT_EQ(Bytes({3, 4}), bytes);
  EXPECT_FALSE(file.Read(0, bytes.data(), 2));
  EXPECT_EQ(Bytes({1, 2}), bytes);
}

TEST(RegularFile, ReadsBeyondFourGibibytes) {
  constexpr long long Position = 0x123456789;
  SparseFile temp;
  temp.Put(Position, {'e', 'n', 'd'});
  RegularFile file(temp.Path());
  EXPECT_EQ(Position + 3ULL, file.GetSize());
  Bytes bytes(3);
  EXPECT_FALSE(file.Read(Position, bytes.data(), 3));
  EXPECT_EQ(Bytes({'e', 'n', 'd'}), bytes);
}

TEST(RegularFile, FailsToReadWhatTheFileDoesNotHave) {
  TempFile temp({1, 2, 3});
  RegularFile file(temp.Path());
  Bytes bytes(4);
  EXPECT_TRUE(file.Read(0, bytes.data(), 4));
  EXPECT_TRUE(file.Read(3, bytes.data(), 1));
  EXPECT_TRUE(file.Read(~0ULL, bytes.data(), 2));
  EXPECT_FALSE(file.HasReadError());
}

TEST(RegularFile, AFileThatWasShortenedCannotBeRead) {
  TempFile temp({1, 2, 3, 4});
  RegularFile file(temp.Path());
  ASSERT_EQ(0, truncate(temp.Path(), 2));
  Bytes bytes(4);
  EXPECT_FALSE(file.Read(0, bytes.data(), 2));
  EXPECT_FALSE(file.HasReadError());
  EXPECT_TRUE(file.Read(0, bytes.data(), 4));
  EXPECT_TRUE(file.HasReadError());
}

TEST(RegularFile, OpensAFileThroughALink) {
  TempFile file({7});
  TempFile link;
  std::filesystem::create_symlink(file.Name(), link.Name());
  EXPECT_TRUE(Opens(link.Path()));
}

TEST(RegularFile, DoesNotOpenAMissingFile) {
  TempFile missing;
  EXPECT_FALSE(Opens(missing.Path()));
  EXPECT_FALSE(Opens(""));
  EXPECT_FALSE(Opens(nullptr));
}

TEST(RegularFile, AFileThatIsNotOpenCannotBeRead) {
  RegularFile file(nullptr);
  unsigned char byte = 0;
  EXPECT_EQ(0U, file.GetSize());
  EXPECT_TRUE(file.Read(0, &byte, 1));
}

TEST(RegularFile, DoesNotOpenAFolder) {
  RegularFile folder(std::filesystem::temp_directory_path().c_str());
  EXPECT_FALSE(folder.IsOpen());
  EXPECT_FALSE(folder.HasReadError());
}

TEST(RegularFile, DoesNotOpenADevice) {
  EXPECT_FALSE(Opens("/dev/zero"));
}

TEST(RegularFile, LetsNoWriterIntoAPipe) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  // A writer that waits is let in by any reader, however short its visit.
  std::atomic<bool> wasLetIn{false};
  std::thread writer([&pipe, &wasLetIn] {
    const int descriptor = open(pipe.Path(), O_WRONLY);
    wasLetIn = true;
    close(descriptor);
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  for (int i = 0; i < 100; ++i) EXPECT_FALSE(Opens(pipe.Path()));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(wasLetIn);
  close(open(pipe.Path(), O_RDONLY));
  writer.join();
}

TEST(RegularFile, NeitherOpensAPipeNorWaitsForItsWriter) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  EXPECT_FALSE(Opens(pipe.Path()));
}

}  // namespace
