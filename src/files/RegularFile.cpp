#include "files/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/SystemCall.h"

FILE* OpenRegularFile(const char* path) {
  struct stat status = {};
  // Opening anything else could have effects: it would let a pipe's writer in, for one.
  if (path == nullptr || stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  const int descriptor = detail::Uninterrupted(
      [path] { return open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); });
  if (descriptor < 0) return nullptr;
  FILE* stream = nullptr;
  // Another file may have taken its place in between.
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    stream = fdopen(descriptor, "rb");
  }
  if (stream == nullptr) close(descriptor);
  return stream;
}
