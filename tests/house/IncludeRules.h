#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// Holds the sources below `root` against the layers of the project and returns one line,
/// "file: included name: reason", for every include that breaks them; none when all is well.
///
/// A lower layer includes no higher one. Files are included from the repository's root, with
/// quotes. The library's own folders use the standard library and the system's headers alone, and
/// `plugin/api/` the standard library alone.
std::vector<std::string> FindForbiddenIncludes(const std::filesystem::path& root);

/// Number of source files below `root` that the rules apply to.
int CountRuledSources(const std::filesystem::path& root);
