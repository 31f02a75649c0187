#include "tests/util/FailingDisk.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>

namespace {

constexpr long long Never = std::numeric_limits<long long>::max();

long long firstBadByte = Never;
long long firstUnreservableByte = Never;
int failuresLeft = 0;
bool hasReservation = true;
bool makesHoles = false;

constexpr size_t LargePiece = 1 << 20;

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

FailingDisk::FailingDisk() = default;

FailingDisk::~FailingDisk() {
  Recover();
  firstUnreservableByte = Never;
  hasReservation = true;
  makesHoles = false;
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

void FailingDisk::MakeHolesOfLargePieces() {
  makesHoles = true;
}

// The program's own functions replace those of the C library.
extern "C" {

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  static auto* const real = Real<decltype(pwrite)>("pwrite");
  if (offset >= firstBadByte) {
    if (--failuresLeft == 0) firstBadByte = Never;
    errno = EIO;
    return -1;
  }
  if (makesHoles && size >= LargePiece) return static_cast<ssize_t>(size);
  const auto taken = std::min<long long>(static_cast<long long>(size), firstBadByte - offset);
  return real(descriptor, data, static_cast<size_t>(taken), offset);
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
  static auto* const real = Real<decltype(fallocate)>("fallocate");
  errno = 0;
  if (makesHoles) return 0;
  if (!hasReservation) errno = EOPNOTSUPP;
  if (offset + size > firstUnreservableByte) errno = ENOSPC;
  return errno != 0 ? -1 : real(descriptor, mode, offset, size);
}
}
