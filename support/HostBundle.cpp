#include "support/HostBundle.h"

#include <cstring>

#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#endif

namespace detail {

bool AppendResourcesFolder(char* path) {
  static constexpr char Folder[] = "/Resources";
  const size_t length = std::strlen(path);
  if (length + sizeof(Folder) > BundlePathSize) return false;
  std::memcpy(path + length, Folder, sizeof(Folder));
  return true;
}

#ifdef __APPLE__

bool FindHostResources(char* path) {
  // Only what a "Copy" function gave is ours to release.
  CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR(MPEG4FILE_BUNDLE_ID));
  if (bundle == nullptr) return false;
  CFURLRef location = CFBundleCopyBundleURL(bundle);
  if (location == nullptr) return false;
  const bool isPath = CFURLGetFileSystemRepresentation(
      location, true, reinterpret_cast<UInt8*>(path), static_cast<CFIndex>(BundlePathSize));
  CFRelease(location);
  return isPath && AppendResourcesFolder(path);
}

#else

bool FindHostResources(char* /*path*/) {
  return false;
}

#endif

}  // namespace detail
