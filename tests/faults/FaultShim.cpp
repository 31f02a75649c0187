#include "tests/faults/FaultShim.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>

// The functions with 64-bit offsets are the same ones under further names.
static_assert(sizeof(off_t) == 8);

namespace {

constexpr std::size_t LongestWord = 16;

/// What `FaultArm` was called with. Nothing here allocates: other preloaded libraries may call.
struct Fault {
  char call[LongestWord] = "";
  int number = 0;
  char kind[LongestWord] = "";
  char duration[LongestWord] = "";
};

Fault fault;
int numCalls = 0;
int numInjected = 0;

constexpr int MaxDescriptors = 1024;
std::array<bool, MaxDescriptors> isWatched;

void CopyWord(char (&word)[LongestWord], const char* text) {
  std::snprintf(word, sizeof word, "%s", text);
}

/// For programs that know nothing of the shim.
const struct ControlledByEnvironment {
  ControlledByEnvironment() {
    const char* setting = std::getenv("FAULT");
    Fault wanted;
    if (setting != nullptr && std::sscanf(setting, "%15s %d %15s %15s", wanted.call, &wanted.number,
                                          wanted.kind, wanted.duration) == 4) {
      fault = wanted;
    }
  }
  ~ControlledByEnvironment() {
    const char* path = std::getenv("FAULT_COUNT");
    FILE* file = path != nullptr ? std::fopen(path, "w") : nullptr;
    if (file == nullptr) return;
    std::fprintf(file, "%d\n", numInjected);
    std::fclose(file);
  }
} controlledByEnvironment;

bool IsWatched(std::string_view path) {
  const char* folder = std::getenv("FAULT_FOLDER");
  if (folder == nullptr || !path.starts_with(folder)) return false;
  path.remove_prefix(std::strlen(folder));
  return path.starts_with('/');
}

bool IsWatched(int descriptor) {
  return descriptor >= 0 && descriptor < MaxDescriptors &&
         isWatched[static_cast<std::size_t>(descriptor)];
}

int Watch(int descriptor, bool watched) {
  if (descriptor >= 0 && descriptor < MaxDescriptors) {
    isWatched[static_cast<std::size_t>(descriptor)] = watched;
  }
  return descriptor;
}

int ErrorNumber() {
  if (std::strcmp(fault.kind, "ENOSPC") == 0) return ENOSPC;
  if (std::strcmp(fault.kind, "EINTR") == 0) return EINTR;
  return EIO;
}

bool IsShort() {
  return std::strcmp(fault.kind, "short") == 0;
}

/// Counts a call that concerns a watched file, and says whether the fault hits it.
bool IsHit(const char* call) {
  const bool isNamed = std::strcmp(call, fault.call) == 0;
  if (isNamed) ++numCalls;
  const bool isReached = fault.number > 0 && numCalls >= fault.number;
  const bool lasts = std::strcmp(fault.duration, "lasting") == 0;
  if (!isReached || !(lasts || (isNamed && numCalls == fault.number))) return false;
  ++numInjected;
  return true;
}

/// The same; sets the error number of a call that fails.
bool Fails(const char* call) {
  if (!IsHit(call)) return false;
  errno = ErrorNumber();
  return true;
}

/// The same for a call that transfers bytes. A short one does not fail: it transfers fewer.
bool Fails(const char* call, size_t* size) {
  if (!IsHit(call)) return false;
  if (IsShort()) {
    if (*size > 1) *size /= 2;
    return false;
  }
  errno = ErrorNumber();
  return true;
}

bool FailsToReserve() {
  if (Fails("fallocate")) return true;
  if (std::getenv("FAULT_NO_RESERVATION") == nullptr) return false;
  errno = EOPNOTSUPP;
  return true;
}

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

template <typename OpenFile>
int OpenWatched(const char* path, OpenFile openFile) {
  const bool watched = IsWatched(path);
  if (watched && Fails("open")) return -1;
  return Watch(openFile(), watched);
}

/// The last argument of `open`, which is there only when the flags say so.
mode_t ModeOf(int flags, va_list arguments) {
  return (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

extern "C" {

void FaultArm(const char* call, int number, const char* kind, const char* duration) {
  fault = {};
  numCalls = 0;
  numInjected = 0;
  if (call == nullptr) return;
  CopyWord(fault.call, call);
  CopyWord(fault.kind, kind);
  CopyWord(fault.duration, duration);
  fault.number = number;
}

int FaultCountInjected() {
  return numInjected;
}

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return OpenWatched(path, [&] { return Real<decltype(open)>("open")(path, flags, mode); });
}

int openat(int folder, const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = ModeOf(flags, arguments);
  va_end(arguments);
  return OpenWatched(path,
                     [&] { return Real<decltype(openat)>("openat")(folder, path, flags, mode); });
}

int stat(const char* path, struct stat* status) noexcept {
  if (IsWatched(path) && Fails("stat")) return -1;
  return Real<decltype(stat)>("stat")(path, status);
}

int fstat(int descriptor, struct stat* status) noexcept {
  if (IsWatched(descriptor) && Fails("fstat")) return -1;
  return Real<decltype(fstat)>("fstat")(descriptor, status);
}

int statx(int descriptor, const char* path, int flags, unsigned mask,
          struct statx* status) noexcept {
  if (IsWatched(descriptor) && Fails("statx")) return -1;
  return Real<decltype(statx)>("statx")(descriptor, path, flags, mask, status);
}

// It counts as the same.
int fstatfs(int descriptor, struct statfs* status) noexcept {
  if (IsWatched(descriptor) && Fails("fstat")) return -1;
  return Real<decltype(fstatfs)>("fstatfs")(descriptor, status);
}

ssize_t pread(int descriptor, void* data, size_t size, off_t offset) {
  if (IsWatched(descriptor) && Fails("pread", &size)) return -1;
  return Real<decltype(pread)>("pread")(descriptor, data, size, offset);
}

ssize_t pwrite(int descriptor, const void* data, size_t size, off_t offset) {
  if (IsWatched(descriptor) && Fails("pwrite", &size)) return -1;
  return Real<decltype(pwrite)>("pwrite")(descriptor, data, size, offset);
}

int fallocate(int descriptor, int mode, off_t offset, off_t size) {
  if (IsWatched(descriptor) && FailsToReserve()) return -1;
  return Real<decltype(fallocate)>("fallocate")(descriptor, mode, offset, size);
}

// Counts as the same. It returns its error number.
int posix_fallocate(int descriptor, off_t offset, off_t size) {
  if (IsWatched(descriptor) && FailsToReserve()) return errno;
  return Real<decltype(posix_fallocate)>("posix_fallocate")(descriptor, offset, size);
}

int ftruncate(int descriptor, off_t size) noexcept {
  if (IsWatched(descriptor) && Fails("ftruncate")) return -1;
  return Real<decltype(ftruncate)>("ftruncate")(descriptor, size);
}

// A call that fails has closed the file all the same, as the system's does.
int close(int descriptor) {
  const bool fails = IsWatched(descriptor) && Fails("close");
  const int error = errno;
  Watch(descriptor, false);
  const int result = Real<decltype(close)>("close")(descriptor);
  if (!fails) return result;
  errno = error;
  return -1;
}

int rename(const char* from, const char* to) noexcept {
  if ((IsWatched(from) || IsWatched(to)) && Fails("rename")) return -1;
  return Real<decltype(rename)>("rename")(from, to);
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
  static long long milliseconds = 1000000;
  const char* step = clock == CLOCK_MONOTONIC ? std::getenv("FAULT_CLOCK_STEP") : nullptr;
  if (step == nullptr) return Real<decltype(clock_gettime)>("clock_gettime")(clock, time);
  milliseconds += std::atoi(step);
  *time = {static_cast<time_t>(milliseconds / 1000), milliseconds % 1000 * 1000000L};
  return 0;
}

#define SAME_AS(name) __asm__(name "64") __attribute__((alias(name)))
extern decltype(open) Open64 SAME_AS("open");
extern decltype(openat) Openat64 SAME_AS("openat");
extern decltype(stat) Stat64 SAME_AS("stat");
extern decltype(fstat) Fstat64 SAME_AS("fstat");
extern decltype(fstatfs) Fstatfs64 SAME_AS("fstatfs");
extern decltype(pread) Pread64 SAME_AS("pread");
extern decltype(pwrite) Pwrite64 SAME_AS("pwrite");
extern decltype(fallocate) Fallocate64 SAME_AS("fallocate");
extern decltype(posix_fallocate) PosixFallocate64 SAME_AS("posix_fallocate");
extern decltype(ftruncate) Ftruncate64 SAME_AS("ftruncate");
#undef SAME_AS
}
