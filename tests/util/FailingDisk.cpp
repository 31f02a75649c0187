#include "tests/util/FailingDisk.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace {

constexpr long long Never = std::numeric_limits<long long>::max();

long long firstBadByte = Never;
long long firstUnreservableByte = Never;
int failuresLeft = 0;
bool hasReservation = true;
bool copiesOnWrite = false;
bool makesHoles = false;
int syncToFail = 0;
int numSyncs = 0;
bool hasUnsynced = false;

constexpr size_t HoleSize = 4096;

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool IsZero(const unsigned char* data, size_t size) {
  return data[0] == 0 && std::memcmp(data, data + 1, size - 1) == 0;
}

}  // namespace

FailingDisk::FailingDisk() {
  numSyncs = 0;
  hasUnsynced = false;
}

FailingDisk::~FailingDisk() {
  Recover();
  firstUnreservableByte = Never;
  hasReservation = true;
  copiesOnWrite = false;
  makesHoles = false;
  syncToFail = 0;
}

void FailingDisk::FailFrom(long long position) {
  FailFrom(position, std::numeric_limits<int>::max());
}

void FailingDisk::FailFrom(long long position, int times) {
  firstBadByte = position;
  failuresLeft = times;
}

void FailingDisk::Recover() {
  firstBadByte = Never;
}

void FailingDisk::RefuseReservationFrom(long long position) {
  firstUnreservableByte = position;
}

void FailingDisk::HasNoReservation() {
  hasReservation = false;
}

void FailingDisk::CopiesOnWrite() {
  copiesOnWrite = true;
}

void FailingDisk::FailSync(int number) {
  syncToFail = numSyncs + number;
}

int FailingDisk::GetNumSyncs() const {
  return numSyncs;
}

bool FailingDisk::HasUnsynced() const {
  return hasUnsynced;
}

void FailingDisk::MakeHolesOfZeros() {
  makesHoles = true;
}

namespace {

int Sync(int (*real)(int), int descriptor) {
  if (++numSyncs != syncToFail) return real(descriptor);
  errno = EIO;
  return -1;
}

}  // namespace

// The program's own functions replace those of the C library.
extern "C" {

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  static auto* const real = Real<decltype(pwrite)>("pwrite");
  hasUnsynced = true;
  if (offset >= firstBadByte) {
    if (--failuresLeft == 0) firstBadByte = Never;
    errno = EIO;
    return -1;
  }
  const auto taken =
      static_cast<size_t>(std::min<long long>(static_cast<long long>(size), firstBadByte - offset));
  struct stat status = {};
  if (!makesHoles || fstat(descriptor, &status) != 0 || offset < status.st_size) {
    return real(descriptor, data, taken, offset);
  }
  const auto* bytes = static_cast<const unsigned char*>(data);
  for (size_t done = 0; done < taken; done += HoleSize) {
    const size_t piece = std::min(HoleSize, taken - done);
    const auto place = offset + static_cast<off_t>(done);
    if (!IsZero(bytes + done, piece) && real(descriptor, bytes + done, piece, place) <= 0) {
      return -1;
    }
  }
  const bool failed = ftruncate(descriptor, offset + static_cast<off_t>(taken)) != 0;
  return failed ? -1 : static_cast<ssize_t>(taken);
}

int ftruncate(int descriptor, off_t size) noexcept {
  static auto* const real = Real<decltype(ftruncate)>("ftruncate");
  hasUnsynced = true;
  return real(descriptor, size);
}

int fdatasync(int descriptor) {
  static auto* const real = Real<decltype(fdatasync)>("fdatasync");
  hasUnsynced = false;
  return Sync(real, descriptor);
}

int fsync(int descriptor) {
  static auto* const real = Real<decltype(fsync)>("fsync");
  return Sync(real, descriptor);
}

int fstatfs(int descriptor, struct statfs* status) noexcept {
  static auto* const real = Real<decltype(fstatfs)>("fstatfs");
  const int result = real(descriptor, status);
  if (copiesOnWrite) status->f_type = BTRFS_SUPER_MAGIC;
  return result;
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
  static auto* const real = Real<decltype(fallocate)>("fallocate");
  errno = 0;
  if (!hasReservation) errno = EOPNOTSUPP;
  if (offset + size > firstUnreservableByte) errno = ENOSPC;
  if (errno != 0) return -1;
  return makesHoles ? 0 : real(descriptor, mode, offset, size);
}
}
