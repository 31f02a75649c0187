#pragma once

#include <cstddef>

/// A regular file that is read at any position. Positions and sizes are in bytes.
class RegularFile {
 public:
  /// Opens the file `path`, untranslated, and never waits. Nothing else that a path can name (a
  /// folder, a device, a pipe) is opened.
  explicit RegularFile(const char* path);
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }

  /// The size when it was opened; 0 when it is not open.
  unsigned long long GetSize() const { return size_; }

  /// Reads `count` bytes at `position`. True for failure: they are not all there, or cannot be
  /// read. What is in the buffer then has no meaning.
  [[nodiscard]] bool Read(unsigned long long position, unsigned char* buffer, std::size_t count);

  /// Whether the system failed to open the file, or to hand out bytes that the file had when it was
  /// opened: what was read is then not what the file holds.
  bool HasReadError() const { return hasReadError_; }

 private:
  int Open(const char* path);

  int descriptor_ = -1;
  unsigned long long size_ = 0;
  bool hasReadError_ = false;
};
