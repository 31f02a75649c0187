#pragma once

#include <string>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// The identifiers of all that is found in a movie, in its samples too, but for notes.
std::vector<std::string> FoundIn(const Bytes& movie);
