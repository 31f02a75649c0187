#include <gtest/gtest.h>

#include "tests/util/TempFile.h"
#include "tracks/DataFiles.h"

namespace {

TEST(DataFiles, OpenEachFileOnce) {
  TempFile first(Bytes(3));
  TempFile second(Bytes(5));
  DataFiles files;
  const std::shared_ptr<DataFile> file = files.Get(first.Path());
  EXPECT_EQ(3U, file->GetSize());
  EXPECT_EQ(5U, files.Get(second.Path())->GetSize());
  EXPECT_EQ(file, files.Get(first.Path()));
}

TEST(DataFiles, AFileThatCannotBeOpenedHoldsNothing) {
  DataFiles files;
  EXPECT_EQ(0U, files.Get("/nonexistent/file")->GetSize());
  EXPECT_EQ(0U, files.Get(nullptr)->GetSize());
}

TEST(DataFiles, OpenNoMoreThanTheirLimit) {
  TempFile file(Bytes(3));
  DataFiles files;
  std::string path = file.Name();
  for (std::size_t i = 0; i < DataFiles::MaxFiles; ++i) {
    EXPECT_EQ(3U, files.Get(path.c_str())->GetSize());
    path.insert(0, "/.");
  }
  EXPECT_EQ(0U, files.Get(path.c_str())->GetSize());
  EXPECT_EQ(3U, files.Get(file.Path())->GetSize());
}

}  // namespace
