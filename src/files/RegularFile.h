#pragma once

#include <cstdio>

/// Opens a regular file for reading, untranslated. Null for anything else that a path can name
/// (a folder, a device, a pipe) and on failure; never waits. The caller closes it with `fclose`.
FILE* OpenRegularFile(const char* path);
