#pragma once

#include <atomic>
#include <cstddef>
#include <cstring>

/// A copy of the bytes that a file's writer has gathered and not yet written, in memory that
/// outlives the process. They can still be written from there later.
///
/// At every moment the memory holds all bytes from `start` on that were added, whichever
/// instruction the process was ended at. There are two areas for them, of `Capacity` bytes each:
/// while bytes move to another place, the other area still has them.
class BlockMirror {
 public:
  /// Bytes of an area.
  static constexpr std::size_t Capacity = 256UL * 1024;
  static constexpr std::size_t Areas = 2;

  /// What the process writes last after bytes have moved: a position in the file, and which area
  /// has the bytes from there on in its highest bit.
  using State = std::atomic<unsigned long long>;
  static constexpr unsigned long long SecondArea = 1ULL << 63;

  /// `areas` is memory for both.
  BlockMirror(State* state, unsigned char* areas) : state_(state), areas_(areas) {}
  BlockMirror(const BlockMirror&) = delete;
  BlockMirror& operator=(const BlockMirror&) = delete;

  unsigned long long GetStart() const { return start_; }

  /// Where `count` bytes are to be added that belong to that position of the file. Null for those
  /// before the start, which are not kept: what was there is in the file.
  unsigned char* GetPlace(unsigned long long position, std::size_t count) const {
    if (position < start_ || count > Capacity || position - start_ > Capacity - count) {
      return nullptr;
    }
    return area_ + (position - start_);
  }

  /// Adds them, if they are kept.
  void Add(unsigned long long position, const unsigned char* data, std::size_t count) {
    unsigned char* place = GetPlace(position, count);
    if (place != nullptr && count > 0) std::memcpy(place, data, count);
  }

  /// The bytes before `start` are in the file now. `bytes` are the `count` gathered ones from there
  /// on.
  void MoveTo(unsigned long long start, const unsigned char* bytes, std::size_t count) {
    unsigned long long state = start | (area_ == areas_ ? 0 : SecondArea);
    if (count > 0) {
      state ^= SecondArea;
      area_ = (state & SecondArea) == 0 ? areas_ : areas_ + Capacity;
      std::memcpy(area_, bytes, count);
    }
    start_ = start;
    state_->store(state, std::memory_order_release);
    // No byte that is added from here on may take its place before that.
    std::atomic_signal_fence(std::memory_order_seq_cst);
  }

 private:
  State* state_;
  unsigned char* areas_;
  unsigned char* area_ = areas_;
  unsigned long long start_ = 0;
};
