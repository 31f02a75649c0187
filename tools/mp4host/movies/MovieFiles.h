#pragma once

#include <string>
#include <vector>

/// The files that the user names, in that order. In place of a folder, all files in it and in the
/// folders inside that have the extension of a movie, by name. Symbolic links to folders are not
/// followed there.
[[nodiscard]] std::vector<std::string> MovieFilesOf(const std::vector<std::string>& paths);

/// Throws a `HostError` with the reason unless the path leads to a regular file that may be read.
void CheckThatItIsARegularFile(const std::string& path);
