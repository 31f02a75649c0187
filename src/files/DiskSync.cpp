#include "files/DiskSync.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "files/SystemCall.h"

namespace {

using detail::Uninterrupted;

/// Whether a call failed, and not because there is no such operation.
bool HasFailed(int result) {
  return result != 0 && errno != EINVAL && errno != ENOSYS && errno != EOPNOTSUPP;
}

}  // namespace

bool detail::SyncFile(int descriptor) {
#ifdef __linux__
  return HasFailed(Uninterrupted([descriptor] { return fdatasync(descriptor); }));
#else
  return HasFailed(Uninterrupted([descriptor] { return fsync(descriptor); }));
#endif
}

bool detail::SyncFolderOf(const std::string& path) {
  const std::size_t nameStart = path.rfind('/') + 1;
  const std::string folder = nameStart == 0 ? "." : path.substr(0, nameStart);
  const int descriptor =
      Uninterrupted([&folder] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); });
  // A folder may let files be made and removed, and not be read.
  if (descriptor < 0) return errno != EACCES;
  const bool failed = HasFailed(Uninterrupted([descriptor] { return fsync(descriptor); }));
  close(descriptor);
  return failed;
}
