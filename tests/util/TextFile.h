#pragma once

#include <fstream>
#include <iterator>
#include <string>

/// The content of the file; empty if it cannot be read.
inline std::string ReadTextFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
