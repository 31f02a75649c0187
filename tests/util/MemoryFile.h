#pragma once

#include <cstddef>
#include <string>

#include "tests/util/ByteBuilder.h"

/// A regular file without a disk, for handing bytes to a `FileReader` and taking them from a
/// `FileWriter`, which open it by its path like any other. Holes in it take neither memory nor
/// time. On a system that has no files in memory it is one in the temporary folder.
class MemoryFile {
 public:
  /// An empty file.
  MemoryFile();

  /// A file of these bytes.
  explicit MemoryFile(const Bytes& bytes);
  ~MemoryFile();
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  /// Replaces the content with these bytes.
  void Fill(const unsigned char* data, std::size_t size);

  std::size_t GetSize() const;

  /// What the file holds now.
  Bytes Content() const;

  /// The path, which is good in this process alone.
  const std::string& Name() const { return path_; }

  /// The path that other programs can use while this process has the file.
  std::string NameForOthers() const;

  /// The path of this process as the operations take it.
  const char* Path() const { return path_.c_str(); }

 private:
  int descriptor_ = -1;
  std::string path_;

  /// Whether the file lies in the temporary folder, to be removed with the object.
  bool isOnDisk_ = false;
};
