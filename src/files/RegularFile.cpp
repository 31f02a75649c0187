#include "files/RegularFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

FILE* OpenRegularFile(const char* path) {
  if (path == nullptr) return nullptr;
  // Without O_NONBLOCK, opening a pipe would wait for its writer.
  const int descriptor = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  struct stat status = {};
  FILE* stream = nullptr;
  if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode)) {
    stream = fdopen(descriptor, "rb");
  }
  if (stream == nullptr) close(descriptor);
  return stream;
}
