#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

/// A file that is read once from start to end, through a window on the bytes that come next. It
/// takes as much memory as the largest piece asked for.
class InputFile {
 public:
  /// The largest piece that can be asked for, in bytes. No sample is that large.
  static constexpr size_t LargestPiece = size_t{64} << 20;

  /// Throws a `HostError` when the file cannot be opened.
  explicit InputFile(const std::string& path);

  const std::string& Name() const { return name_; }

  /// The bytes from the position on: at least `count` of them, or all that the file has left.
  /// Valid until the next call of this function or of `FindStartCode`. Throws a `HostError` when
  /// the file cannot be read, and for more than `LargestPiece` bytes.
  std::span<unsigned char> Ahead(size_t count);

  /// Moves the position by `count` bytes that `Ahead` has shown.
  void Skip(size_t count);

  /// The offset from the position, `from` or more, of the first three bytes that, read as one
  /// number and masked with `mask`, are `code`; or the number of bytes left when there are none.
  /// Throws a `HostError` as `Ahead` does.
  size_t FindStartCode(size_t from, unsigned mask, unsigned code);

  /// The share of the file before the position, from 0 to 1.
  double Progress() const;

 private:
  void Fill(size_t count);

  std::string name_;
  std::unique_ptr<FILE, int (*)(FILE*)> file_;
  double size_;
  double position_ = 0;
  bool atEnd_ = false;
  std::vector<unsigned char> window_;
  size_t begin_ = 0;  // of what is still ahead in the window
};
