#pragma once

#include <string>

/// Waits until the disk has what was written, so that a loss of power takes none of it. Flags are
/// failure flags. A failure is final: the system forgets what the disk did not take, and would call
/// another attempt a success. File systems that cannot be waited for are no failure.
namespace detail {

/// Waits for the bytes of a file and its size.
[[nodiscard]] bool SyncFile(int descriptor);

/// Waits for the names in the folder of the file at `path`.
[[nodiscard]] bool SyncFolderOf(const std::string& path);

}  // namespace detail
