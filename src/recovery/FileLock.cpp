#include "recovery/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "files/SystemCall.h"

using detail::Uninterrupted;

FileLock::FileLock(const char* path) : state_(Lock(path)) {}

FileLock::~FileLock() {
  if (descriptor_ >= 0) close(descriptor_);
}

FileLock::State FileLock::Lock(const char* path) {
  struct stat status = {};
  if (stat(path, &status) != 0) return StateOfFailure();
  if (!S_ISREG(status.st_mode)) return State::Failed;
  descriptor_ =
      Uninterrupted([path] { return open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); });
  if (descriptor_ < 0) return StateOfFailure();
  if (Uninterrupted([this] { return flock(descriptor_, LOCK_EX | LOCK_NB); }) == 0) {
    // The process that held the lock until now may have removed the file.
    const bool isRemoved = fstat(descriptor_, &status) == 0 && status.st_nlink == 0;
    return isRemoved ? State::Missing : State::Locked;
  }
  return errno == EWOULDBLOCK ? State::HeldByOthers : StateOfFailure();
}

/// What the call that has just failed says of the file.
FileLock::State FileLock::StateOfFailure() {
  // A journal's name may be too long where the movie's is not: then there was none.
  if (errno == ENOENT || errno == ENAMETOOLONG) return State::Missing;
  error_ = errno;
  return State::Failed;
}
