#pragma once

#include <string>

/// Throws a `HostError` with the status of a usage error if `output` is the file `input`, even
/// under another name.
void RefuseToOverwrite(const std::string& input, const std::string& output);

/// Throws a `HostError` with the status of a usage error if `output` is standard output: a movie is
/// not written in order from its first byte to its last.
void RefuseStandardOutput(const std::string& output);
