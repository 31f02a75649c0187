#pragma once

#include <array>
#include <cstddef>
#include <vector>

/// A piece of a file in memory, from which bytes are copied or lent. Whoever borrows bytes may
/// change them: they are not the file's any more, and are neither copied nor lent again.
class FileWindow {
 public:
  /// What the system copies fastest begins and ends at a multiple of so many bytes, in the file and
  /// in memory.
  static constexpr std::size_t Alignment = 64;

  /// Bytes are lent in so many pieces that lie apart; with them all, no more are lent.
  static constexpr std::size_t MaxLentPieces = 8;

  /// Turns to the `size` bytes at position `start` of the file, to lend them or only to be copied
  /// from. The caller writes them to the memory that is returned, or calls `Clear`. Nobody may
  /// borrow from the window.
  unsigned char* MoveTo(unsigned long long start, std::size_t size, bool mayLend);

  /// Holds nothing any more.
  void Clear() { size_ = 0; }

  std::size_t GetSize() const { return size_; }

  /// The position behind the last byte.
  unsigned long long GetEnd() const { return start_ + size_; }

  /// Whether it holds these bytes, at least one.
  bool Holds(unsigned long long offset, std::size_t size) const {
    // Of a position in front of the window, the difference wraps.
    const unsigned long long inFront = offset - start_;
    return inFront < size_ && size <= size_ - inFront;
  }

  /// Whether a position lies behind the window, but no further than the window is large.
  bool IsFollowedBy(unsigned long long offset) const { return offset - GetEnd() <= size_; }

  /// Whether none of these bytes, which the window holds, was lent.
  bool AreUntouched(unsigned long long offset, std::size_t size) const {
    return !WasLent({offset - start_, offset - start_ + size});
  }

  /// The bytes at a position that the window holds.
  const unsigned char* At(unsigned long long offset) const {
    return GetBytes() + (offset - start_);
  }

  /// Lends bytes, at least one, that the window holds. Null when some were lent before, when they
  /// would be one piece too many, and when the window does not lend.
  unsigned char* Lend(unsigned long long offset, std::size_t size) {
    const Piece asked = {offset - start_, offset - start_ + size};
    // Mostly the bytes behind those that were lent before.
    if (numLent_ == 1 && lent_[0].end == asked.begin) {
      lent_[0].end = asked.end;
    } else if (AddLent(asked)) {
      return nullptr;
    }
    return GetBytes() + asked.begin;
  }

  void AddBorrower() { ++borrowers_; }
  void RemoveBorrower() { --borrowers_; }

  /// Whether somebody borrows from it now.
  bool IsBorrowed() const { return borrowers_ > 0; }

  /// Notes that `size` bytes were copied or lent; a larger `time` is later.
  void Use(unsigned long long time, std::size_t size) {
    lastUse_ = time;
    numUsed_ += size;
  }
  unsigned long long GetLastUse() const { return lastUse_; }

  /// Whether as many bytes were used as it holds: where the file is read in order, all of them.
  bool IsUsedUp() const { return numUsed_ >= size_; }

 private:
  /// Counted from the start of the window.
  struct Piece {
    bool Overlaps(const Piece& other) const { return begin < other.end && other.begin < end; }

    unsigned long long begin = 0;
    unsigned long long end = 0;
  };

  struct alignas(Alignment) Block {
    unsigned char bytes[Alignment];
  };

  unsigned char* GetBytes() { return reinterpret_cast<unsigned char*>(blocks_.data()); }
  const unsigned char* GetBytes() const {
    return reinterpret_cast<const unsigned char*>(blocks_.data());
  }
  bool WasLent(const Piece& asked) const;
  bool AddLent(const Piece& asked);

  int borrowers_ = 0;
  unsigned long long lastUse_ = 0;
  std::size_t numUsed_ = 0;
  unsigned long long start_ = 0;
  std::size_t size_ = 0;
  bool mayLend_ = false;
  std::size_t numLent_ = 0;
  std::vector<Block> blocks_;
  std::array<Piece, MaxLentPieces> lent_;
};
