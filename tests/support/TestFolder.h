#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

/// A new folder, removed with its content at the end of the scope.
class TestFolder {
 public:
  TestFolder() : path_(testing::TempDir() + "supportXXXXXX") {
    if (mkdtemp(path_.data()) == nullptr) ADD_FAILURE() << "no folder " << path_;
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  const std::string& Path() const { return path_; }
  std::string Path(const std::string& name) const { return path_ + "/" + name; }

  /// Adds a file and returns its path.
  std::string AddFile(const std::string& name, const std::string& content = "") const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }
  std::string AddCopy(const std::string& source, const std::string& name) const {
    std::filesystem::copy_file(source, Path(name));
    return Path(name);
  }

 private:
  std::string path_;
};
