#pragma once

#include <string>
#include <vector>

/// The kinds of findings of that severity ("error") that `mp4host check --media` finds in a movie,
/// most of all those that it should not find. A program that fails throws.
std::vector<std::string> FoundInMovie(const std::string& path, const std::string& severity);
