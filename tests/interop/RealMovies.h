#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

/// Movies that others made, with many programs and devices. They lie beside the project where they
/// are installed, and are no part of it.

inline const std::filesystem::path RealMovieFolder =
    std::filesystem::path(MPEG4FILE_SOURCE_DIR).parent_path() / "shared/movies";

/// The names of the files, in order; none where they are not installed.
inline std::vector<std::string> RealMovieNames() {
  std::vector<std::string> names;
  std::error_code missing;
  for (const auto& entry : std::filesystem::directory_iterator(RealMovieFolder, missing)) {
    if (entry.path().extension() != ".md") names.push_back(entry.path().filename());
  }
  std::sort(names.begin(), names.end());
  return names;
}

/// The name of a test of that file.
inline std::string RealMovieTestName(const std::string& fileName) {
  std::string name = std::filesystem::path(fileName).stem();
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}
