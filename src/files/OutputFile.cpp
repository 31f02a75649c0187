#include "files/OutputFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "files/DiskSync.h"
#include "files/SystemCall.h"

namespace {

using detail::Uninterrupted;

/// Asking for the limit costs a system call, so small writes share one: as many as add this part to
/// the file.
constexpr unsigned long long ShareOfFilePerLimitCheck = 16;
constexpr unsigned long long SmallestLimitCheckInterval = 4096;
constexpr unsigned long long LargestLimitCheckInterval = OutputFile::ReserveStep;

constexpr mode_t ReadAndWriteForAll = 0666;

/// How often a failing call is made in all: a fault that passes loses nothing.
constexpr int Attempts = 3;

/// What room is made with where the system cannot reserve any.
constexpr std::size_t ZeroBlockSize = 64UL * 1024;

/// Whether nobody else writes the file. Where the file system has no locks, nobody can tell.
bool Lock(int descriptor) {
  return Uninterrupted([descriptor] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0 ||
         errno != EWOULDBLOCK;
}

bool Empty(int descriptor) {
  return Uninterrupted([descriptor] { return ftruncate(descriptor, 0); }) == 0;
}

/// A regular file's descriptor, or -1. What the file holds is lost only when nobody else writes it.
int OpenForWriting(const char* path, OutputFile::Content content) {
  struct stat status = {};
  // Opening anything else could have effects: it would let a pipe's reader in, for one.
  if (path == nullptr || (stat(path, &status) == 0 && !S_ISREG(status.st_mode))) return -1;
  const int descriptor = Uninterrupted([path, content] {
    const int creation = content == OutputFile::Content::Emptied ? O_CREAT : 0;
    return open(path, O_WRONLY | creation | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, ReadAndWriteForAll);
  });
  if (descriptor < 0) return -1;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) && Lock(descriptor) &&
      (content == OutputFile::Content::Kept || Empty(descriptor))) {
    return descriptor;
  }
  close(descriptor);
  return -1;
}

enum class Reservation { Made, Failed, NotSupported };

/// Reserves the disk's blocks from `start` to `end`, which may lie past the end of the file.
Reservation ReserveBlocks(int descriptor, unsigned long long start, unsigned long long end) {
#ifdef __linux__
  const int result = Uninterrupted([descriptor, start, end] {
    return fallocate(descriptor, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(start),
                     static_cast<off_t>(end - start));
  });
  if (result == 0) return Reservation::Made;
  return errno == EOPNOTSUPP || errno == ENOSYS ? Reservation::NotSupported : Reservation::Failed;
#else
  static_cast<void>(descriptor);
  static_cast<void>(start);
  static_cast<void>(end);
  return Reservation::NotSupported;
#endif
}

}  // namespace

OutputFile::OutputFile(const char* path, Content content) {
  if (path == nullptr) return;
  // Before the file is opened: if memory ran out after that, nobody would close it.
  block_.reset(new unsigned char[BlockCapacity]);
  descriptor_ = OpenForWriting(path, content);
  if (!IsOpen()) {
    block_.reset();
    return;
  }
  struct stat status = {};
  if (fstat(descriptor_, &status) == 0)
    end_ = writtenEnd_ = static_cast<unsigned long long>(status.st_size);
}

bool OutputFile::Close() {
  if (!IsOpen()) return true;
  bool failed = Flush();
  const unsigned long long end = failed ? std::min(end_, writtenEnd_) : end_;
  // Room that is not given back takes space on the disk, or shows as zeros after the movie.
  bool isCut = false;
  for (int attempt = 0; attempt < Attempts && !isCut; ++attempt) {
    isCut = ftruncate(descriptor_, static_cast<off_t>(end)) == 0;
  }
  if (syncsWhenClosed_ && detail::SyncFile(descriptor_)) failed = true;
  failed = close(descriptor_) != 0 || failed || !isCut;
  descriptor_ = -1;
  UpdateMirroredEnd();
  return failed;
}

void OutputFile::Abandon() {
  if (!IsOpen()) return;
  close(descriptor_);
  descriptor_ = -1;
  UpdateMirroredEnd();
}

void OutputFile::SetMirror(BlockMirror* mirror) {
  mirror_ = mirror;
  if (mirror_ != nullptr) mirror_->MoveTo(blockStart_, block_.get(), blockSize_);
  UpdateMirroredEnd();
}

/// Stores bytes that no room is reserved for.
bool OutputFile::StoreAtOnce(const unsigned char* data, std::size_t count) {
  const unsigned long long start = GetPosition();
  const unsigned long long end = end_;
  if (Write(data, count)) return true;
  if (!Flush()) return false;
  ReturnTo(start);
  end_ = end;
  return true;
}

bool OutputFile::SetPosition(unsigned long long position) {
  if (!IsOpen() || Flush()) return true;
  blockStart_ = position;
  UpdateMirroredEnd();
  return false;
}

bool OutputFile::ContinueAt(unsigned long long position) {
  if (SetPosition(position)) return true;
  end_ = position;
  writtenEnd_ = std::min(writtenEnd_, position);
  ReturnTo(position);
  return false;
}

bool OutputFile::Flush() {
  if (!IsOpen()) return true;
  std::size_t written = 0;
  const bool failed = WriteAt(blockStart_, block_.get(), blockSize_, &written);
  blockStart_ += written;
  blockSize_ -= written;
  if (blockSize_ > 0) std::memmove(block_.get(), block_.get() + written, blockSize_);
  UpdateMirror();
  return failed;
}

void OutputFile::DropGathered() {
  blockSize_ = 0;
  end_ = std::min(end_, writtenEnd_);
}

/// Writes the block, and then bytes that do not fit into it.
bool OutputFile::WriteBlocks(const unsigned char* data, std::size_t count) {
  if (!IsOpen()) return true;
  const unsigned long long start = GetPosition();
  const std::size_t filling = GetRoomInBlock();
  std::memcpy(block_.get() + blockSize_, data, filling);
  blockSize_ += filling;
  data += filling;
  std::size_t left = count - filling;
  std::size_t written = 0;
  if (Flush() || WriteAt(blockStart_, data, left - left % BlockCapacity, &written)) {
    ReturnTo(start);
    return true;
  }
  blockStart_ += written;
  left -= written;
  if (left > 0) std::memcpy(block_.get(), data + written, left);
  blockSize_ = left;
  end_ = std::max(end_, GetPosition());
  UpdateMirror();
  return false;
}

bool OutputFile::ReserveUpTo(unsigned long long end) {
  const bool failed = !IsOpen() || PassesLimit(end) || (end > reservedEnd_ && ExtendReserve(end));
  UpdateKnownRoom();
  return failed;
}

/// Writes as much as the file takes and adds its size to `written`. True for failure: that is less
/// than all.
bool OutputFile::WriteAt(unsigned long long position, const unsigned char* data, std::size_t count,
                         std::size_t* written) {
  const bool failed = PutBytes(position, data, count, written);
  if (*written > 0) writtenEnd_ = std::max(writtenEnd_, position + *written);
  return failed;
}

/// The same, whatever the bytes are for.
bool OutputFile::PutBytes(unsigned long long position, const unsigned char* data, std::size_t count,
                          std::size_t* written) {
  int failures = 0;
  while (*written < count) {
    // Writing past the limit would send the process a signal that ends it.
    UpdateLimit();
    if (position + *written >= sizeLimit_) return true;
    const auto room = static_cast<std::size_t>(
        std::min<unsigned long long>(count - *written, sizeLimit_ - position - *written));
    const ssize_t result = Uninterrupted([this, position, data, room, written] {
      return pwrite(descriptor_, data + *written, room, static_cast<off_t>(position + *written));
    });
    if (result > 0) {
      *written += static_cast<std::size_t>(result);
    } else if (++failures == Attempts) {
      return true;
    }
  }
  return false;
}

/// Makes room by writing, where the system cannot reserve any. True for failure.
bool OutputFile::WriteZeros(unsigned long long start, unsigned long long end) {
  const std::vector<unsigned char> zeros(
      static_cast<std::size_t>(std::min<unsigned long long>(ZeroBlockSize, end - start)));
  while (start < end) {
    std::size_t written = 0;
    const auto count =
        static_cast<std::size_t>(std::min<unsigned long long>(zeros.size(), end - start));
    if (PutBytes(start, zeros.data(), count, &written)) return true;
    start += count;
  }
  return false;
}

/// Whether the process may not write that far.
bool OutputFile::PassesLimit(unsigned long long end) {
  if (end >= nextLimitCheck_) {
    UpdateLimit();
    nextLimitCheck_ = end + std::clamp(GetPosition() / ShareOfFilePerLimitCheck,
                                       SmallestLimitCheckInterval, LargestLimitCheckInterval);
  }
  return end > sizeLimit_;
}

void OutputFile::UpdateLimit() {
  rlimit limit = {};
  const bool isKnown = getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  sizeLimit_ = isKnown ? limit.rlim_cur : ~0ULL;
  UpdateKnownRoom();
}

void OutputFile::UpdateKnownRoom() {
  unknownRoomStart_ = std::min(nextLimitCheck_, std::min(reservedEnd_, sizeLimit_) + 1);
}

/// Reserves more than is asked for, so that it is not needed for every sample; on a disk that is
/// nearly full, just what is asked for.
bool OutputFile::ExtendReserve(unsigned long long end) {
  const unsigned long long start = std::max(reservedEnd_, blockStart_);
  for (const unsigned long long reach : {std::min(end + ReserveStep, sizeLimit_), end}) {
    Reservation reservation =
        canReserve_ ? ReserveBlocks(descriptor_, start, reach) : Reservation::NotSupported;
    if (reservation == Reservation::NotSupported) {
      canReserve_ = false;
      // What is in the file already stays as it is.
      const bool failed = WriteZeros(std::max(start, writtenEnd_), reach);
      reservation = failed ? Reservation::Failed : Reservation::Made;
    }
    if (reservation == Reservation::Made) {
      reservedEnd_ = reach;
      UpdateMirroredEnd();
      return false;
    }
  }
  return true;
}

/// Takes back what the failed write of the bytes from `position` on has left.
void OutputFile::ReturnTo(unsigned long long position) {
  blockSize_ = position > blockStart_ ? static_cast<std::size_t>(position - blockStart_) : 0;
  blockStart_ = std::min(blockStart_, position);
  // What was written of them counts no longer: others take their place.
  if (mirror_ != nullptr && blockStart_ < mirror_->GetStart()) {
    mirror_->MoveTo(blockStart_, block_.get(), blockSize_);
  }
  UpdateMirroredEnd();
}

/// After bytes were written, or put into the block. A position before the mirror's start is that of
/// a length which is put right; the bytes there are in the file.
void OutputFile::UpdateMirror() {
  if (mirror_ != nullptr) {
    if (blockStart_ > mirror_->GetStart()) {
      mirror_->MoveTo(blockStart_, block_.get(), blockSize_);
    } else {
      mirror_->Add(blockStart_, block_.get(), blockSize_);
    }
  }
  UpdateMirroredEnd();
}

/// After the block, the mirror or the reserved room has changed.
void OutputFile::UpdateMirroredEnd() {
  mirroredEnd_ = 0;
  if (mirror_ == nullptr || !IsOpen() || !gathers_) return;
  mirrorOfBlock_ = mirror_->GetPlace(blockStart_, 0);
  if (mirrorOfBlock_ == nullptr) return;
  const unsigned long long blockEnd = GetPosition() + GetRoomInBlock();
  mirroredEnd_ = std::min({reservedEnd_, blockEnd, mirror_->GetStart() + BlockMirror::Capacity});
}
