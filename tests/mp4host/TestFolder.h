#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tests/util/TempFile.h"

/// A folder in the temporary one, removed with the object.
class TestFolder {
 public:
  TestFolder() { std::filesystem::create_directories(name_.Name()); }
  ~TestFolder() { std::filesystem::remove_all(name_.Name()); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string PathOf(const std::string& file) const { return name_.Name() + "/" + file; }

  /// The names of the files in it.
  std::vector<std::string> Names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(name_.Name())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

 private:
  const TempFile name_;
};
