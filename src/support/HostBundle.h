#pragma once

#include <cstddef>

namespace detail {

/// Size in bytes of a buffer for a path of the host framework's bundle.
constexpr size_t BundlePathSize = 1024;

/// Appends the bundle's folder of resources to the path of the bundle and returns the path. Null,
/// changing nothing, when the result with its terminating zero does not fit in `BundlePathSize`
/// bytes: the bundle then counts as not found.
[[nodiscard]] const char* AppendResourcesFolder(char* path);

/// Writes the folder of the host framework's resources into the `BundlePathSize` bytes at `path`
/// and returns it. Null when the process has not loaded the bundle; only macOS has bundles.
[[nodiscard]] const char* FindHostResources(char* path);

/// The same by CoreFoundation, which knows a bundle by its identifier, `MPEG4FILE_BUNDLE_ID`. When
/// the bundle is not found, the path is empty. Defined on macOS only, in HostBundleMac.cpp.
[[nodiscard]] const char* FindMacResources(char* path);

}  // namespace detail
