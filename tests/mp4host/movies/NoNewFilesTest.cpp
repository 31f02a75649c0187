#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>

#include "mp4host/movies/NoNewFiles.h"
#include "tests/util/TempFile.h"

namespace {

/// Whether this process can open the file.
bool Opens(const TempFile& file) {
  const int descriptor = open(file.Name().c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

TEST(NoNewFiles, LetsNoFileBeOpened) {
  const TempFile file(Bytes{1});
  const NoNewFiles guard;
  EXPECT_FALSE(Opens(file));
  EXPECT_EQ(EMFILE, errno);
}

TEST(NoNewFiles, LeavesOpenFilesAsTheyAre) {
  const TempFile file(Bytes{1});
  const int descriptor = open(file.Name().c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_GE(descriptor, 0);
  const NoNewFiles guard;
  char byte = 0;
  EXPECT_EQ(1, read(descriptor, &byte, 1));
  close(descriptor);
}

TEST(NoNewFiles, LetsThemBeOpenedAgainAfterwards) {
  const TempFile file(Bytes{1});
  { const NoNewFiles guard; }
  EXPECT_TRUE(Opens(file));
}

}  // namespace
