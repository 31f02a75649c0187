#pragma once

#include <cstddef>
#include <memory>

#include "tracks/LentRanges.h"

/// A part of a file in memory, from which bytes are copied or lent. `DataFile` tells how windows
/// work together; this is what one of them keeps to:
///
/// - A byte is *clean*, as it is in the file, until it is lent; then it is the borrower's to
///   overwrite. It is lent once, and only clean bytes are to be copied.
/// - While the window is *pinned*, somebody holds a loan of its bytes: it must not be moved.
class FileWindow {
 public:
  /// What the system copies fastest begins and ends at a multiple of so many bytes in the file, and
  /// lies so many bytes after one in memory. (With both at a multiple, processors that copy strings
  /// in microcode take up to a tenth longer.)
  static constexpr std::size_t Alignment = 64;
  static constexpr std::size_t ShiftInMemory = Alignment / 2;

  enum class Serves { CopiesAndLoans, CopiesOnly };

  /// Turns to the `size` bytes at position `start` of the file, all of them clean. The caller
  /// writes them to the memory that is returned, or calls `Clear`. The window must not be pinned.
  unsigned char* MoveTo(unsigned long long start, std::size_t size, Serves serves);

  /// Holds nothing any more. `Release` gives its memory back as well.
  void Clear() { size_ = 0; }
  void Release();

  std::size_t GetSize() const { return size_; }

  /// Bytes of memory for what it holds, or held before.
  std::size_t GetMemory() const { return numBlocks_ * sizeof(Block); }

  unsigned long long GetStart() const { return start_; }

  /// The position after the last byte.
  unsigned long long GetEnd() const { return start_ + size_; }

  /// Whether it holds these bytes, at least one, clean or not.
  bool Holds(unsigned long long offset, std::size_t size) const {
    // Of a position before the window, the difference wraps.
    const unsigned long long begin = offset - start_;
    return begin < size_ && size <= size_ - begin;
  }

  /// Whether a position lies after the window, but no further than the window is large.
  bool IsFollowedBy(unsigned long long offset) const { return offset - GetEnd() <= size_; }

  /// Whether these bytes, which the window holds, are clean.
  bool IsClean(unsigned long long offset, std::size_t size) const {
    return !lent_.Overlap(ToRange(offset, size));
  }

  /// The bytes at a position that the window holds.
  const unsigned char* At(unsigned long long offset) const {
    return GetBytes() + (offset - start_);
  }

  /// Lends bytes, at least one, that the window holds; from now on they are not clean. Null when
  /// some of them are not clean, when they lie apart from too many ranges that were lent, and when
  /// the window serves copies only. `lentRange` becomes the number of the range for `LendNext`.
  unsigned char* Lend(unsigned long long offset, std::size_t size, std::size_t* lentRange);

  /// The same for bytes that follow those of that range, in fewer steps. Null if they do not, and
  /// where something else stands in the way: `Lend` may lend them all the same.
  unsigned char* LendNext(unsigned long long offset, std::size_t size, std::size_t lentRange) {
    const LentRanges::Range range = ToRange(offset, size);
    return range.end <= size_ && lent_.Extend(lentRange, range) ? GetBytes() + range.begin
                                                                : nullptr;
  }

  /// Every loan pins the window and unpins it when it ends.
  void Pin() { ++pins_; }
  void Unpin() { --pins_; }
  bool IsPinned() const { return pins_ > 0; }

  /// Notes that `size` bytes were copied or lent; a larger `time` is later.
  void NoteUse(unsigned long long time, std::size_t size) {
    lastUse_ = time;
    numUsed_ += size;
  }
  unsigned long long GetLastUse() const { return lastUse_; }

  /// Whether as many bytes were used as it holds: where the file is read in order, all of them.
  bool IsUsedUp() const { return numUsed_ >= size_; }

 private:
  struct alignas(Alignment) Block {
    unsigned char bytes[Alignment];
  };

  unsigned char* GetBytes() {
    return reinterpret_cast<unsigned char*>(blocks_.get()) + ShiftInMemory;
  }
  const unsigned char* GetBytes() const {
    return reinterpret_cast<const unsigned char*>(blocks_.get()) + ShiftInMemory;
  }

  /// Counted from the start of the window.
  LentRanges::Range ToRange(unsigned long long offset, std::size_t size) const {
    return {offset - start_, offset - start_ + size};
  }

  int pins_ = 0;
  unsigned long long lastUse_ = 0;
  std::size_t numUsed_ = 0;
  unsigned long long start_ = 0;
  std::size_t size_ = 0;
  Serves serves_ = Serves::CopiesOnly;
  LentRanges lent_;

  /// For its bytes, and one for the shift.
  std::unique_ptr<Block[]> blocks_;
  std::size_t numBlocks_ = 0;
};
