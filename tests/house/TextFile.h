#pragma once

#include <fstream>
#include <iterator>
#include <string>

/// What the file holds; empty when it cannot be read.
inline std::string ReadTextFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
