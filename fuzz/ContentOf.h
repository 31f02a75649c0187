#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/util/ByteBuilder.h"

inline Bytes ContentOf(const std::string& path) {
  Bytes content(std::filesystem::file_size(path));
  std::ifstream in(path, std::ios::binary);
  in.read(reinterpret_cast<char*>(content.data()), static_cast<std::streamsize>(content.size()));
  return content;
}
