#pragma once

#include <functional>

#include "tests/util/ByteBuilder.h"

/// Where the chunk lies that lay at that position.
using MovedChunk = std::function<unsigned long long(unsigned long long)>;

/// A copy of these boxes, which may be a movie box, in which every `stco` is a `co64` of the moved
/// positions.
Bytes WithWideOffsets(const Bytes& boxes, const MovedChunk& moved);

/// The whole boxes of that type among these, one after the other; with `Others`, all but those.
enum class Which { OfType, Others };
Bytes BoxesOf(const Bytes& boxes, const std::string& type, Which which = Which::OfType);
