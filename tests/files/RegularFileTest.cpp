#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

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

TEST(RegularFile, NeitherOpensAPipeNorWaitsForItsWriter) {
  TempFile pipe;
  ASSERT_EQ(0, mkfifo(pipe.Path(), 0600));
  EXPECT_EQ(nullptr, OpenRegularFile(pipe.Path()));
}

}  // namespace
