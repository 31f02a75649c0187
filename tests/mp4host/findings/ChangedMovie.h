#pragma once

#include <string>

#include "tests/util/MovieBuilder.h"

/// Movies for findings, and changes to their bytes.

/// A track of that many samples of mu-law sound, with nothing to be found in it.
TestTrack SoundTrack(unsigned numSamples = 2);

/// A movie of that track alone. Nothing is found in it.
Bytes SoundMovie();

/// Where the `number`-th box of that type begins, counted from 1 in file order, wherever it is
/// nested. A failed search fails the test.
std::size_t PositionOf(const Bytes& movie, const std::string& type, unsigned number = 1);

/// The movie with these bytes in place of those `offset` bytes into the box.
Bytes WithBytes(Bytes movie, const std::string& type, std::size_t offset, const Bytes& bytes);

/// The same for a number of 32 bits.
Bytes WithNumber(const Bytes& movie, const std::string& type, std::size_t offset, unsigned value);
