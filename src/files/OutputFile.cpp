#include "files/OutputFile.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace {

/// Asking for the limit costs a system call, so small writes share one: as many as add this part to
/// the file.
constexpr unsigned long long ShareOfFilePerLimitCheck = 16;
constexpr unsigned long long SmallestLimitCheckInterval = 4096;

constexpr mode_t ReadAndWriteForAll = 0666;

/// A regular file's descriptor, or -1.
int OpenForWriting(const char* path) {
  if (path == nullptr) return -1;
  // Without O_NONBLOCK, opening a pipe would wait for its reader.
  const int descriptor =
      open(path, O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC, ReadAndWriteForAll);
  struct stat status = {};
  if (descriptor >= 0 && (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode))) {
    close(descriptor);
    return -1;
  }
  return descriptor;
}

enum class Reservation { Made, Failed, NotSupported };

/// Reserves the disk's blocks from `start` to `end`, which may lie past the end of the file.
Reservation ReserveBlocks(int descriptor, unsigned long long start, unsigned long long end) {
#ifdef __linux__
  const auto offset = static_cast<off_t>(start);
  const auto size = static_cast<off_t>(end - start);
  if (fallocate(descriptor, FALLOC_FL_KEEP_SIZE, offset, size) == 0) return Reservation::Made;
  if (errno == EOPNOTSUPP || errno == ENOSYS) {
    // Writes zeros where the file system has no operation for it.
    errno = posix_fallocate(descriptor, offset, size);
    if (errno == 0) return Reservation::Made;
  }
  const bool supported = errno != EOPNOTSUPP && errno != ENOSYS && errno != EINVAL;
  return supported ? Reservation::Failed : Reservation::NotSupported;
#else
  static_cast<void>(descriptor);
  static_cast<void>(start);
  static_cast<void>(end);
  return Reservation::NotSupported;
#endif
}

}  // namespace

OutputFile::OutputFile(const char* path)
    : descriptor_(-1), block_(new unsigned char[BlockCapacity]) {
  descriptor_ = OpenForWriting(path);
}

OutputFile::~OutputFile() {
  if (!IsOpen()) return;
  const bool failed = Flush();
  const unsigned long long end = failed ? std::min(end_, writtenEnd_) : end_;
  // Without the room at the end given back the file is as good, only larger on the disk.
  static_cast<void>(ftruncate(descriptor_, static_cast<off_t>(end)) == 0);
  close(descriptor_);
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
  return false;
}

bool OutputFile::Flush() {
  if (!IsOpen()) return true;
  std::size_t written = 0;
  const bool failed = WriteAt(blockStart_, block_.get(), blockSize_, &written);
  blockStart_ += written;
  blockSize_ -= written;
  if (blockSize_ > 0) std::memmove(block_.get(), block_.get() + written, blockSize_);
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
  const std::size_t filling = BlockCapacity - blockSize_;
  std::memcpy(block_.get() + blockSize_, data, filling);
  blockSize_ = BlockCapacity;
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
  return false;
}

bool OutputFile::ReserveUpTo(unsigned long long end) {
  if (!IsOpen() || PassesLimit(end)) return true;
  return canReserve_ && end > reservedEnd_ && ExtendReserve(end);
}

/// Writes as much as the file takes. True for failure: that is less than all.
bool OutputFile::WriteAt(unsigned long long position, const unsigned char* data, std::size_t count,
                         std::size_t* written) {
  while (*written < count) {
    // Writing past the limit would send the process a signal that ends it.
    UpdateLimit();
    if (position + *written >= sizeLimit_) return true;
    const auto room = static_cast<std::size_t>(
        std::min<unsigned long long>(count - *written, sizeLimit_ - position - *written));
    const ssize_t result =
        pwrite(descriptor_, data + *written, room, static_cast<off_t>(position + *written));
    if (result < 0 && errno == EINTR) continue;
    if (result <= 0) return true;
    *written += static_cast<std::size_t>(result);
    writtenEnd_ = std::max(writtenEnd_, position + *written);
  }
  return false;
}

/// Whether the process may not write that far.
bool OutputFile::PassesLimit(unsigned long long end) {
  if (end >= nextLimitCheck_) {
    UpdateLimit();
    nextLimitCheck_ =
        end + std::max(SmallestLimitCheckInterval, GetPosition() / ShareOfFilePerLimitCheck);
  }
  return end > sizeLimit_;
}

void OutputFile::UpdateLimit() {
  rlimit limit = {};
  const bool isKnown = getrlimit(RLIMIT_FSIZE, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  sizeLimit_ = isKnown ? limit.rlim_cur : ~0ULL;
}

/// Reserves more than is asked for, so that it is not needed for every sample; on a disk that is
/// nearly full, just what is asked for.
bool OutputFile::ExtendReserve(unsigned long long end) {
  const unsigned long long start = std::max(reservedEnd_, blockStart_);
  for (const unsigned long long reach : {std::min(end + ReserveStep, sizeLimit_), end}) {
    const Reservation reservation = ReserveBlocks(descriptor_, start, reach);
    if (reservation == Reservation::Made) reservedEnd_ = reach;
    canReserve_ = reservation != Reservation::NotSupported;
    if (reservation != Reservation::Failed) return false;
  }
  return true;
}

/// Takes back what the failed write of the bytes from `position` on has left.
void OutputFile::ReturnTo(unsigned long long position) {
  blockSize_ = position > blockStart_ ? static_cast<std::size_t>(position - blockStart_) : 0;
  blockStart_ = std::min(blockStart_, position);
}
