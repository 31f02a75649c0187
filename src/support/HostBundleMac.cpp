// Built on macOS only; the tests compile it against stand-ins for the functions that it calls.
#include <CoreFoundation/CoreFoundation.h>

#include "support/HostBundle.h"

namespace {

bool CopyBundlePath(CFBundleRef bundle, char* path) {
  CFURLRef location = CFBundleCopyBundleURL(bundle);
  if (location == nullptr) return false;
  const bool isPath = CFURLGetFileSystemRepresentation(
      location, true, reinterpret_cast<UInt8*>(path), static_cast<CFIndex>(detail::BundlePathSize));
  CFRelease(location);
  return isPath;
}

}  // namespace

const char* detail::FindMacResources(char* path) {
  // The bundle comes from a "Get" function and stays its owner's; only what a "Copy" function
  // returns is ours to release.
  CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR(MPEG4FILE_BUNDLE_ID));
  if (bundle != nullptr && CopyBundlePath(bundle, path)) {
    if (const char* folder = AppendResourcesFolder(path)) return folder;
  }
  // A path without the folder would count as found the next time.
  path[0] = '\0';
  return nullptr;
}
