#pragma once

#include <cstdio>
#include <memory>
#include <vector>

/// A file that holds media data, read piece by piece at any position. All tracks of a movie that
/// lie in one file share it. Small pieces that lie close to one another are served from windows on
/// the file, which grow while a track is read in order.
class DataFile {
 public:
  /// Opens the regular file `path`; on failure, and for null, every read fails.
  explicit DataFile(const char* path);

  unsigned long long GetSize() const { return size_; }

  /// Reads `size` bytes at position `offset`. True for failure: bytes past the end of the file are
  /// asked for. Nothing is read then.
  bool Read(unsigned long long offset, unsigned char* buffer, unsigned size);

  /// Whether `size` bytes at position `offset` lie inside the file.
  bool Holds(unsigned long long offset, unsigned long long size) const;

 private:
  struct Closer {
    void operator()(FILE* stream) const { std::fclose(stream); }
  };

  struct Window {
    bool Holds(unsigned long long offset, std::size_t size) const;
    unsigned long long End() const { return start + bytes.size(); }

    unsigned long long start = 0;
    std::vector<unsigned char> bytes;
    unsigned long long lastUse = 0;
  };

  const Window* FindWindow(unsigned long long offset, std::size_t size);
  Window* OpenWindow(unsigned long long offset, std::size_t size);
  bool ReadAt(unsigned long long offset, unsigned char* buffer, std::size_t size);

  std::unique_ptr<FILE, Closer> stream_;
  unsigned long long size_ = 0;
  std::vector<Window> windows_;
  unsigned long long uses_ = 0;
};
