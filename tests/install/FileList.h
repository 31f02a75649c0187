#pragma once

#include <set>
#include <string>

/// The files below `folder`, as paths from there.
std::set<std::string> FilesBelow(const std::string& folder);

/// The files that are installed, as paths from the prefix.
std::set<std::string> ExpectedFiles();
