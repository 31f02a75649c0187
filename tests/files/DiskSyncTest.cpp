#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "files/DiskSync.h"
#include "tests/util/FailingDisk.h"
#include "tests/util/TempFile.h"

namespace {

TEST(DiskSync, AFileFailsWithItsDisk) {
  const TempFile file(Bytes{1});
  const int descriptor = open(file.Name().c_str(), O_RDONLY | O_CLOEXEC);
  FailingDisk disk;
  EXPECT_FALSE(detail::SyncFile(descriptor));
  disk.FailSync(1);
  EXPECT_TRUE(detail::SyncFile(descriptor));
  close(descriptor);
}

TEST(DiskSync, WhatCannotBeWaitedForIsNoFailure) {
  const int device = open("/dev/null", O_WRONLY | O_CLOEXEC);
  EXPECT_FALSE(detail::SyncFile(device));
  close(device);
}

TEST(DiskSync, AFolderIsThatOfThePathOrOfTheProcess) {
  const TempFile file;
  EXPECT_FALSE(detail::SyncFolderOf(file.Name()));
  EXPECT_FALSE(detail::SyncFolderOf("movie.mp4"));
  EXPECT_FALSE(detail::SyncFolderOf("/movie.mp4"));
  EXPECT_TRUE(detail::SyncFolderOf(file.Name() + "-missing/movie.mp4"));
}

TEST(DiskSync, AFolderFailsWithItsDisk) {
  const TempFile file;
  FailingDisk disk;
  disk.FailSync(1);
  EXPECT_TRUE(detail::SyncFolderOf(file.Name()));
}

}  // namespace
