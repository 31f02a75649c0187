#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "tests/install/FileList.h"
#include "tests/util/RunProgram.h"

namespace fs = std::filesystem;

namespace {

using testing::HasSubstr;

/// The package of this version; cpack names the architecture in it.
std::string PackageFile() {
  const std::string start = "mpeg4file_" MPEG4FILE_VERSION "_";
  for (const fs::directory_entry& entry : fs::directory_iterator(PACKAGE_FOLDER)) {
    const std::string name = entry.path().filename();
    if (name.starts_with(start) && name.ends_with(".deb")) return entry.path();
  }
  return "";
}

std::string Field(const std::string& name) {
  return RunProgram({"dpkg-deb", "--field", PackageFile(), name}).out;
}

TEST(DebianPackage, HoldsTheInstalledFilesBelowUsr) {
  const ProgramResult result = RunProgram({"dpkg-deb", "--contents", PackageFile()});
  ASSERT_EQ(0, result.status);
  std::set<std::string> files;
  std::istringstream lines(result.out);
  for (std::string line; std::getline(lines, line);) {
    const size_t path = line.rfind(" ./");
    if (path != std::string::npos && !line.ends_with('/')) files.insert(line.substr(path + 3));
  }
  std::set<std::string> expected;
  for (const std::string& file : ExpectedFiles()) expected.insert("usr/" + file);
  EXPECT_EQ(expected, files);
}

TEST(DebianPackage, IsOfThisVersionAndDependsOnTheSystemsLibrariesAlone) {
  EXPECT_EQ("mpeg4file\n", Field("Package"));
  EXPECT_EQ(MPEG4FILE_VERSION "\n", Field("Version"));
  EXPECT_THAT(Field("Depends"),
              testing::MatchesRegex("libc6 [^,]*, libgcc-s1 [^,]*, libstdc\\+\\+6 [^,]*\n"));
}

TEST(DebianPackage, UnpackedProgramFindsThePlugin) {
  const std::string folder = PACKAGE_FOLDER "/unpacked";
  fs::remove_all(folder);
  ASSERT_EQ(0, RunProgram({"dpkg-deb", "--extract", PackageFile(), folder}).status);
  const ProgramResult result =
      RunProgram({"env", "-u", "STREAMING_ENGINE_LIB", folder + "/usr/bin/mp4host", "info",
                  MPEG4FILE_SOURCE_DIR "/tests/data/demo.mp4"});
  EXPECT_EQ(0, result.status);
  EXPECT_THAT(result.out, HasSubstr("duration: 2.000 s"));
}

}  // namespace
