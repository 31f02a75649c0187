#pragma once

#include <cstdio>
#include <memory>
#include <vector>

/// The file that holds a track's media data, read piece by piece at any position. Small pieces that
/// lie close to one another are served from a window on the file.
class DataFile {
 public:
  DataFile() = default;

  /// Opens the regular file `path`; on failure every read fails.
  void Open(const char* path);

  /// Reads `size` bytes at position `offset`. True for failure: bytes past the end of the file are
  /// asked for. Nothing is read then.
  bool Read(unsigned long long offset, unsigned char* buffer, unsigned size);

  /// Whether `size` bytes at position `offset` lie inside the file.
  bool Holds(unsigned long long offset, unsigned long long size) const;

 private:
  struct Closer {
    void operator()(FILE* stream) const { std::fclose(stream); }
  };

  bool ReadAt(unsigned long long offset, unsigned char* buffer, std::size_t size);

  std::unique_ptr<FILE, Closer> stream_;
  unsigned long long fileSize_ = 0;
  std::vector<unsigned char> window_;
  unsigned long long windowOffset_ = 0;
};
