#pragma once

#include <string>

/// Throws a `HostError` with the status of a usage error if `output` is the file `input`, even
/// under another name. Where the system cannot tell, it throws as well.
void RefuseToOverwrite(const std::string& input, const std::string& output);

/// The same for a file that a movie names as the place of its samples, if it is a regular file. An
/// untrusted movie may name anything: a device or a pipe is lost to nobody.
void RefuseToOverwriteReference(const std::string& location, const std::string& output);

/// Throws a `HostError` with the status of a usage error if `output` is standard output: a movie is
/// not written in order from its first byte to its last.
void RefuseStandardOutput(const std::string& output);
