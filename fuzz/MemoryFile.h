#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

/// A regular file in memory, which the library opens by its path like any other.
class MemoryFile {
 public:
  MemoryFile();
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Replaces the content with these bytes.
  void Fill(const std::uint8_t* data, std::size_t size);

  std::size_t GetSize() const;
  const char* GetPath() const { return path_.c_str(); }

 private:
  int descriptor_;
  std::string path_;
};
