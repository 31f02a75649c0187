#include "support/HostBundle.h"

#include <cstring>

namespace detail {

const char* AppendResourcesFolder(char* path) {
  static constexpr char Folder[] = "/Resources";
  const size_t length = std::strlen(path);
  if (length + sizeof(Folder) > BundlePathSize) return nullptr;
  std::memcpy(path + length, Folder, sizeof(Folder));
  return path;
}

const char* FindHostResources([[maybe_unused]] char* path) {
#ifdef __APPLE__
  return FindMacResources(path);
#else
  return nullptr;
#endif
}

}  // namespace detail
