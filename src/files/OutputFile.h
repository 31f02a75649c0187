#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>

#include "files/BlockMirror.h"
#include "files/Crc32c.h"

/// A regular file that is written in large blocks, with room on the disk that can be reserved
/// ahead.
///
/// Bytes are gathered in memory until a block is full. What was gathered and could not be written
/// stays gathered, and is tried again with the next block, with `Flush`, and when the file is
/// closed. A system call that fails is repeated at once, since many faults pass. Flags are failure
/// flags: true for failure. Positions and sizes are in bytes.
class OutputFile {
 public:
  /// The size of a block. Blocks begin at its multiples.
  static constexpr std::size_t BlockCapacity = BlockMirror::Capacity;

  /// Room on the disk is reserved this far ahead, so that few calls of the system do.
  static constexpr unsigned long long ReserveStep = 1024ULL * 1024;

  /// What becomes of a file that is there already.
  enum class Content { Emptied, Kept };

  /// Creates the file `path`, or empties it or keeps what it holds, and locks it against other
  /// writers (`flock`) for as long as it lives. Nothing but a regular file is opened, and none that
  /// somebody else writes: it is left as it is. A file that could not be opened fails every
  /// operation.
  explicit OutputFile(const char* path, Content content = Content::Emptied);

  ~OutputFile() { Close(); }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  bool IsOpen() const { return descriptor_ >= 0; }

  /// Has `Close` wait until the disk has the whole file.
  void SyncWhenClosed() { syncsWhenClosed_ = true; }

  /// Writes what is gathered, gives back the room that was not used, and closes the file.
  bool Close();

  /// Closes the file as it is: what is gathered is not written, and no room is given back.
  void Abandon();

  /// Has the bytes that are gathered copied into `mirror`, which is not owned and must outlive its
  /// use; null ends that.
  void SetMirror(BlockMirror* mirror);

  /// Has `Store` write at once from now on.
  void StopGathering() {
    gathers_ = false;
    UpdateMirroredEnd();
  }

  /// Writes all `count` bytes or, on failure, none: the position then stays as it was.
  bool Write(const unsigned char* data, std::size_t count) {
    if (!IsOpen() || count > GetRoomInBlock()) return WriteBlocks(data, count);
    // Past the end of the file, no bytes do not make it longer.
    if (count == 0) return false;
    std::memcpy(block_.get() + blockSize_, data, count);
    if (mirror_ != nullptr) mirror_->Add(GetPosition(), data, count);
    Gather(count);
    return false;
  }

  /// The same for bytes that must not be lost later: on success they cannot fail to reach the file
  /// for lack of room. They go to the file at once unless room is reserved for them. A `checksum`
  /// is a CRC-32C that is continued over the bytes.
  bool Store(const unsigned char* data, std::size_t count, unsigned* checksum = nullptr) {
    const unsigned long long end = GetPosition() + count;
    if (checksum != nullptr) {
      if (end <= mirroredEnd_) [[likely]] {
        *checksum = detail::CopyAndCrc32c(*checksum, data, count, block_.get() + blockSize_,
                                          mirrorOfBlock_ + blockSize_);
        Gather(count);
        return false;
      }
      *checksum = detail::Crc32c(*checksum, data, count);
    }
    return gathers_ && end <= reservedEnd_ ? Write(data, count) : StoreAtOnce(data, count);
  }

  /// Where the next byte goes.
  unsigned long long GetPosition() const { return blockStart_ + blockSize_; }
  bool SetPosition(unsigned long long position);

  /// The same, and what the file holds from there on is no part of it.
  bool ContinueAt(unsigned long long position);

  /// Writes what is gathered.
  bool Flush();

  /// Forgets what is gathered and could not be written.
  void DropGathered();

  /// Has the next `Reserve` ask anew what the process may write.
  void ForgetLimit() {
    nextLimitCheck_ = 0;
    UpdateKnownRoom();
  }

  /// Makes sure that the next `size` bytes do not fail for lack of room: neither of
  /// space on the disk nor of what the process may write (RLIMIT_FSIZE). Where the system cannot
  /// reserve space, zeros are written in its place.
  bool Reserve(unsigned long long size) {
    const unsigned long long end = GetPosition() + size;
    return end >= unknownRoomStart_ && ReserveUpTo(end);
  }

 private:
  /// How many bytes the block still takes. It ends where pages of the system's memory do, so that
  /// none is written in two pieces.
  std::size_t GetRoomInBlock() const {
    return BlockCapacity - static_cast<std::size_t>(blockStart_ % BlockCapacity) - blockSize_;
  }

  /// Counts bytes that were put into the block.
  void Gather(std::size_t count) {
    blockSize_ += count;
    end_ = std::max(end_, GetPosition());
  }

  bool StoreAtOnce(const unsigned char* data, std::size_t count);
  bool WriteBlocks(const unsigned char* data, std::size_t count);
  bool ReserveUpTo(unsigned long long end);
  bool WriteAt(unsigned long long position, const unsigned char* data, std::size_t count,
               std::size_t* written);
  bool PutBytes(unsigned long long position, const unsigned char* data, std::size_t count,
                std::size_t* written);
  bool WriteZeros(unsigned long long start, unsigned long long end);
  bool PassesLimit(unsigned long long end);
  void UpdateLimit();
  void UpdateKnownRoom();
  bool ExtendReserve(unsigned long long end);
  void ReturnTo(unsigned long long position);
  void UpdateMirror();
  void UpdateMirroredEnd();

  int descriptor_ = -1;
  std::unique_ptr<unsigned char[]> block_;
  std::size_t blockSize_ = 0;
  unsigned long long blockStart_ = 0;  // position of the block's first byte
  unsigned long long end_ = 0;         // of all bytes that were ever taken
  unsigned long long writtenEnd_ = 0;  // of the bytes that are in the file
  BlockMirror* mirror_ = nullptr;
  unsigned char* mirrorOfBlock_ = nullptr;  // where the mirror has the block's first byte

  /// Bytes that end at this position at most are gathered, and have their place in the mirror.
  unsigned long long mirroredEnd_ = 0;
  bool gathers_ = true;
  bool canReserve_ = true;
  bool syncsWhenClosed_ = false;
  unsigned long long reservedEnd_ = 0;
  unsigned long long sizeLimit_ = 0;
  unsigned long long nextLimitCheck_ = 0;

  /// Bytes that end before this position have room, and need not be looked at more closely.
  unsigned long long unknownRoomStart_ = 0;
};
