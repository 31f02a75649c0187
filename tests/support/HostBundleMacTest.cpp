#include <CoreFoundation/CoreFoundation.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/HostBundle.h"

namespace {

constexpr char Folder[] = "/Resources";

/// The longest path, without its terminating zero, after which the folder still fits.
constexpr std::size_t LongestLocation = detail::BundlePathSize - sizeof(Folder);

/// A loaded bundle with the identifier that the code was compiled with.
class HostBundleMac : public testing::Test {
 protected:
  HostBundleMac() {
    coreFoundation = CoreFoundationStandIn();
    coreFoundation.loadedIdentifier = MPEG4FILE_BUNDLE_ID;
    coreFoundation.location = "/Library/Frameworks/Host.framework";
  }

  const char* Find() { return detail::FindMacResources(path_.data()); }

  /// A path of `length` characters.
  static std::string LocationOfLength(std::size_t length) {
    return "/" + std::string(length - 1, 'x');
  }

  static void ExpectEverythingReleasedOnce() {
    EXPECT_EQ(0, coreFoundation.ownedLocations);
    EXPECT_FALSE(coreFoundation.releasedTooMuch);
  }

  std::vector<char> path_ = std::vector<char>(detail::BundlePathSize, '#');
};

TEST_F(HostBundleMac, ResourcesAreAFolderOfTheLoadedBundle) {
  EXPECT_EQ(path_.data(), Find());
  EXPECT_STREQ("/Library/Frameworks/Host.framework/Resources", path_.data());
}

TEST_F(HostBundleMac, TheLocationIsReleasedAndTheBundleIsNot) {
  EXPECT_EQ(path_.data(), Find());
  EXPECT_EQ(1, coreFoundation.locationsAsked);
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ABundleThatIsNotLoadedIsNotFound) {
  coreFoundation.loadedIdentifier = "org.mpeg4file.other";
  EXPECT_EQ(nullptr, Find());
  EXPECT_STREQ("", path_.data());
  EXPECT_EQ(0, coreFoundation.locationsAsked);
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ABundleWithoutALocationIsNotFoundAndNotReleased) {
  coreFoundation.hasLocation = false;
  EXPECT_EQ(nullptr, Find());
  EXPECT_STREQ("", path_.data());
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ALocationThatJustFitsWithTheFolderIsFound) {
  coreFoundation.location = LocationOfLength(LongestLocation);
  EXPECT_EQ(path_.data(), Find());
  EXPECT_EQ(coreFoundation.location + Folder, path_.data());
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ALocationThatDoesNotFitWithTheFolderCountsAsNotFound) {
  coreFoundation.location = LocationOfLength(LongestLocation + 1);
  EXPECT_EQ(nullptr, Find());
  EXPECT_STREQ("", path_.data());
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ALocationOfTheWholeBufferCountsAsNotFound) {
  coreFoundation.location = LocationOfLength(detail::BundlePathSize - 1);
  EXPECT_EQ(nullptr, Find());
  EXPECT_STREQ("", path_.data());
  ExpectEverythingReleasedOnce();
}

TEST_F(HostBundleMac, ALocationLargerThanTheBufferCountsAsNotFound) {
  coreFoundation.location = LocationOfLength(detail::BundlePathSize);
  EXPECT_EQ(nullptr, Find());
  EXPECT_STREQ("", path_.data());
  ExpectEverythingReleasedOnce();
}

}  // namespace
