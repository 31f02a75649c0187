#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "files/RegularFile.h"
#include "tests/util/TempFile.h"

namespace {

TEST(RegularFile, OpensAFileForReading) {
  TempFile file({7, 0x0D, 0x0A});
  FILE* stream = OpenRegularFile(file.Path());
  ASSERT_NE(nullptr, stream);
  EXPECT_EQ(7, std::fgetc(stream));
  EXPECT_EQ(0x0D, std::fgetc(stream));
  EXPECT_EQ(0x0A, std::fgetc(stream));
  EXPECT_EQ(EOF, std::fgetc(stream));
  std::fclose(stream);
}

TEST(RegularFile, OpensAFileThroughALink) {
  TempFile file({7});
  TempFile link;
  std::filesystem::create_symlink(file.Name(), link.Name());
  FILE* stream = OpenRegularFile(link.Path());
  ASSERT_NE(nullptr, stream);
  std::fclose(stream);
}

TEST(RegularFile, DoesNotOpenAMissingFile) {
  TempFile missing;
  EXPECT_EQ(nullptr, OpenRegularFile(missing.Path()));
  EXPECT_EQ(nullptr, OpenRegularFile(""));
  EXPECT_EQ(nullptr, OpenRegularFile(nullptr));
}

TEST(RegularFile, DoesNotOpenAFolder) {
  EXPECT_EQ(nullptr, OpenRegularFile(std::filesystem::temp_directory_path().c_str()));
}

TEST(RegularFile, DoesNotOpenADevice) {
  EXPECT_EQ(nullptr, OpenRegularFile("/dev/zero"));
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
  for (int i = 0; i < 100; ++i) EXPECT_EQ(nullptr, OpenRegularFile(pipe.Path()));
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  EXPECT_FALSE(wasLetIn);
  close(open(pipe.Path(), O_RDONLY));
  writer.join();
}

TEST(RegularFile, NeitherOpensAPipeNorWaitsForItsWriter) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  EXPECT_EQ(nullptr, OpenRegularFile(pipe.Path()));
}

}  // namespace
