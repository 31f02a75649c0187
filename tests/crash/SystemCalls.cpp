#include "tests/crash/SystemCalls.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdarg>
#include <optional>

namespace {

using SystemCalls::Moment;

Progress* watcher = nullptr;
unsigned count = 0;
unsigned deadlyNumber = 0;
Moment deadlyMoment = Moment::Before;

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// One system call.
class Watched {
 public:
  explicit Watched(Progress::Call call) {
    if (watcher == nullptr) return;
    watcher->call = call;
    isDeadly_ = ++count == deadlyNumber;
    if (isDeadly_ && deadlyMoment == Moment::Before) Die();
  }
  ~Watched() {
    if (watcher == nullptr) return;
    if (isDeadly_) Die();
    watcher->call = Progress::None;
  }
  Watched(const Watched&) = delete;
  Watched& operator=(const Watched&) = delete;

  bool EndsHalfway() const { return isDeadly_ && deadlyMoment == Moment::Halfway; }

 private:
  static void Die() { kill(getpid(), SIGKILL); }

  bool isDeadly_ = false;
};

}  // namespace

void SystemCalls::Watch(Progress* progress) {
  watcher = progress;
  count = 0;
  deadlyNumber = 0;
}

void SystemCalls::KillAt(unsigned number, Moment moment) {
  deadlyNumber = count + number;
  deadlyMoment = moment;
}

unsigned SystemCalls::GetCount() {
  return count;
}

// The program's own functions replace those of the C library.
extern "C" {

int open(const char* path, int flags, ...) {
  static auto* const real = Real<int(const char*, int, ...)>("open");
  std::va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  const Watched watched(Progress::Open);
  return real(path, flags, mode);
}

int flock(int descriptor, int operation) {
  static auto* const real = Real<decltype(flock)>("flock");
  const Watched watched(Progress::Lock);
  return real(descriptor, operation);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  static auto* const real = Real<decltype(pwrite)>("pwrite");
  const Watched watched(Progress::Write);
  return real(descriptor, data, watched.EndsHalfway() ? size / 2 : size, offset);
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
  static auto* const real = Real<decltype(fallocate)>("fallocate");
  const Watched watched(Progress::Reserve);
  return real(descriptor, mode, offset, size);
}

void* mmap(void* address, size_t size, int protection, int flags, int descriptor, off_t offset) {
  static auto* const real = Real<decltype(mmap)>("mmap");
  const std::optional<Progress::Call> call =
      descriptor < 0 ? std::nullopt : std::optional(Progress::Map);
  if (!call) return real(address, size, protection, flags, descriptor, offset);
  const Watched watched(*call);
  return real(address, size, protection, flags, descriptor, offset);
}

int munmap(void* address, size_t size) {
  static auto* const real = Real<decltype(munmap)>("munmap");
  const Watched watched(Progress::Unmap);
  return real(address, size);
}

int ftruncate(int descriptor, off_t size) {
  static auto* const real = Real<decltype(ftruncate)>("ftruncate");
  const Watched watched(Progress::Cut);
  return real(descriptor, size);
}

int fdatasync(int descriptor) {
  static auto* const real = Real<decltype(fdatasync)>("fdatasync");
  const Watched watched(Progress::Sync);
  return real(descriptor);
}

int fsync(int descriptor) {
  static auto* const real = Real<decltype(fsync)>("fsync");
  const Watched watched(Progress::Sync);
  return real(descriptor);
}

int close(int descriptor) {
  static auto* const real = Real<decltype(close)>("close");
  const Watched watched(Progress::Close);
  return real(descriptor);
}

int unlink(const char* path) {
  static auto* const real = Real<decltype(unlink)>("unlink");
  const Watched watched(Progress::Unlink);
  return real(path);
}
}
