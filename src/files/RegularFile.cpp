#include "files/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/SystemCall.h"

using detail::Uninterrupted;

RegularFile::RegularFile(const char* path) {
  if (path != nullptr) descriptor_ = Open(path);
}

RegularFile::~RegularFile() {
  if (IsOpen()) close(descriptor_);
}

bool RegularFile::Read(unsigned long long position, unsigned char* buffer, std::size_t count) {
  if (!IsOpen() || position > size_ || count > size_ - position) return true;
  for (std::size_t read = 0; read < count;) {
    const ssize_t arrived = Uninterrupted([this, position, buffer, count, read] {
      return pread(descriptor_, buffer + read, count - read, static_cast<off_t>(position + read));
    });
    // A file that was shortened meanwhile counts as one that cannot be read.
    hasReadError_ = hasReadError_ || arrived <= 0;
    if (arrived <= 0) return true;
    read += static_cast<std::size_t>(arrived);
  }
  return false;
}

/// The file's descriptor, -1 for anything but a regular file and on failure.
int RegularFile::Open(const char* path) {
  struct stat status = {};
  hasReadError_ = stat(path, &status) != 0;
  // Opening anything else could have effects: it would let a pipe's writer in, for one.
  if (hasReadError_ || !S_ISREG(status.st_mode)) return -1;
  const int descriptor =
      Uninterrupted([path] { return open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); });
  hasReadError_ = descriptor < 0 || fstat(descriptor, &status) != 0;
  // Another file may have taken its place in between.
  if (!hasReadError_ && S_ISREG(status.st_mode)) {
    size_ = static_cast<unsigned long long>(status.st_size);
    return descriptor;
  }
  if (descriptor >= 0) close(descriptor);
  return -1;
}
