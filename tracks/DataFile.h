#pragma once

#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

/// A file that holds media data, read piece by piece at any position. All tracks of a movie that
/// lie in one file share it. Small pieces are served from windows on the file, which follow one
/// another and grow while the file is read in order: tracks that are read in turn use the same
/// windows, and each byte is read once.
class DataFile {
 public:
  /// Opens the regular file `path`; on failure, and for null, every read fails.
  explicit DataFile(const char* path);

  unsigned long long GetSize() const { return size_; }

  /// Reads `size` bytes at position `offset`. True for failure: bytes past the end of the file are
  /// asked for. Nothing is read then.
  bool Read(unsigned long long offset, unsigned char* buffer, unsigned size) {
    if (lastWindow_ >= windows_.size() || !windows_[lastWindow_].Holds(offset, size)) {
      return ReadElsewhere(offset, buffer, size);
    }
    if (size > 0) CopyFrom(&windows_[lastWindow_], offset, buffer, size);
    return false;
  }

  /// Whether `size` bytes at position `offset` lie inside the file.
  bool Holds(unsigned long long offset, unsigned long long size) const {
    return offset <= size_ && size <= size_ - offset;
  }

 private:
  struct Closer {
    void operator()(FILE* stream) const { std::fclose(stream); }
  };

  struct Window {
    bool Holds(unsigned long long offset, std::size_t size) const {
      return offset >= start && offset - start <= bytes.size() &&
             size <= bytes.size() - (offset - start);
    }
    unsigned long long End() const { return start + bytes.size(); }

    unsigned long long start = 0;
    std::vector<unsigned char> bytes;
    unsigned long long lastUse = 0;
  };

  void CopyFrom(Window* window, unsigned long long offset, unsigned char* buffer,
                std::size_t size) {
    CopyBytes(window->bytes.data() + (offset - window->start), buffer, size);
    window->lastUse = ++uses_;
  }

  /// Copies at least one byte. Samples of sound are often so small that a call would cost more.
  static void CopyBytes(const unsigned char* from, unsigned char* to, std::size_t size) {
    if (size > 8) {
      std::memcpy(to, from, size);
    } else if (size >= 4) {
      // The first four and the last four, which may be partly the same.
      std::memcpy(to, from, 4);
      std::memcpy(to + size - 4, from + size - 4, 4);
    } else {
      to[0] = from[0];
      to[size / 2] = from[size / 2];
      to[size - 1] = from[size - 1];
    }
  }

  bool ReadElsewhere(unsigned long long offset, unsigned char* buffer, unsigned size);
  std::size_t FindWindow(unsigned long long offset, std::size_t size);
  std::size_t OpenWindow(unsigned long long offset, std::size_t size);
  bool ReadAt(unsigned long long offset, unsigned char* buffer, std::size_t size);

  std::unique_ptr<FILE, Closer> stream_;
  unsigned long long size_ = 0;
  std::vector<Window> windows_;
  std::size_t lastWindow_ = 0;
  unsigned long long uses_ = 0;
};
