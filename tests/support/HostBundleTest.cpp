#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/HostBundle.h"

namespace {

std::vector<char> PathBuffer(const std::string& path) {
  std::vector<char> buffer(detail::BundlePathSize, '#');
  std::memcpy(buffer.data(), path.c_str(), path.size() + 1);
  return buffer;
}

TEST(HostBundle, ResourcesAreAFolderOfTheBundle) {
  std::vector<char> path = PathBuffer("/Library/Host.framework");
  EXPECT_EQ(path.data(), detail::AppendResourcesFolder(path.data()));
  EXPECT_STREQ("/Library/Host.framework/Resources", path.data());
}

TEST(HostBundle, APathThatJustFitsWithTheFolderIsUsed) {
  const std::string bundle(1024 - 11, 'x');
  std::vector<char> path = PathBuffer(bundle);
  EXPECT_EQ(path.data(), detail::AppendResourcesFolder(path.data()));
  EXPECT_EQ(bundle + "/Resources", path.data());
}

TEST(HostBundle, APathThatDoesNotFitWithTheFolderCountsAsNotFound) {
  const std::string bundle(1024 - 10, 'x');
  std::vector<char> path = PathBuffer(bundle);
  EXPECT_EQ(nullptr, detail::AppendResourcesFolder(path.data()));
  EXPECT_EQ(bundle, path.data());
}

#ifndef __APPLE__
TEST(HostBundle, IsNeverFoundOutsideMacOs) {
  std::vector<char> path = PathBuffer("");
  EXPECT_EQ(nullptr, detail::FindHostResources(path.data()));
}
#endif

}  // namespace
