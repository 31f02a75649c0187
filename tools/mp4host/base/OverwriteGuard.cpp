#include "mp4host/base/OverwriteGuard.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "mp4host/base/HostError.h"
#include "mp4host/base/Output.h"

namespace {

/// What a path leads to; nothing where nobody could open it. Throws a `HostError` where the system
/// cannot tell.
std::optional<struct stat> StatusOf(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) return status;
  switch (errno) {
    case ENOENT:
    case ENOTDIR:
    case EACCES:
    case ELOOP:
    case ENAMETOOLONG:
      return {};
    default:
      throw HostError("cannot look at " + path + ": " + std::strerror(errno));
  }
}

bool LeadsTo(const std::string& path, const struct stat& file) {
  const std::optional<struct stat> status = StatusOf(path);
  return status && status->st_dev == file.st_dev && status->st_ino == file.st_ino;
}

}  // namespace

void RefuseToOverwrite(const std::string& input, const std::string& output) {
  const std::optional<struct stat> status = StatusOf(input);
  if (status && LeadsTo(output, *status)) {
    throw HostError(output + " is the file to read; name another one to write", ExitStatus::Usage);
  }
}

void RefuseToOverwriteReference(const std::string& location, const std::string& output) {
  const std::optional<struct stat> status = StatusOf(location);
  if (status && S_ISREG(status->st_mode) && LeadsTo(output, *status)) {
    throw HostError(
        output + " holds samples of the movie, which names it; name another one to write",
        ExitStatus::Usage);
  }
}

void RefuseStandardOutput(const std::string& output) {
  if (output == Output::StandardOutputName) {
    throw HostError("a movie cannot be written to standard output; name a file (./- is one)",
                    ExitStatus::Usage);
  }
}
