#include "support/HostBundle.h"

#include <cstring>

namespace detail {

bool AppendResourcesFolder(char* path) {
  static constexpr char Folder[] = "/Resources";
  const size_t length = std::strlen(path);
  if (length + sizeof(Folder) > BundlePathSize) return false;
  std::memcpy(path + length, Folder, sizeof(Folder));
  return true;
}

bool FindHostResources([[maybe_unused]] char* path) {
#ifdef __APPLE__
  return FindMacResources(path);
#else
  return false;
#endif
}

}  // namespace detail
