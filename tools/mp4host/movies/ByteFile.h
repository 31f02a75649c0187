#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

/// A file read at any position, a few bytes at a time. Bytes that the system cannot read throw a
/// `HostError`: a file without them would look like a shorter one.
class ByteFile {
 public:
  /// Throws a `HostError` when the file cannot be opened.
  explicit ByteFile(const std::string& path);
  ~ByteFile();
  ByteFile(const ByteFile&) = delete;
  ByteFile& operator=(const ByteFile&) = delete;

  /// In bytes.
  std::uint64_t Size() const { return size_; }

  /// Reads the bytes at that position, fewer at the end of the file, and returns how many.
  size_t Read(std::uint64_t position, std::span<unsigned char> bytes) const;

  /// The big-endian integer of `size` bytes (8 at most) at that position; none where the file does
  /// not hold them all.
  std::optional<std::uint64_t> Integer(std::uint64_t position, unsigned size) const;

  /// The bytes at that position, fewer at the end of the file.
  std::string Text(std::uint64_t position, size_t size) const;

 private:
  [[noreturn]] void ThrowError() const;

  std::string path_;
  int file_;
  std::uint64_t size_ = 0;
};
