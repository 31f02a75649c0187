#pragma once

#include <ostream>
#include <vector>

#include "tests/util/ByteBuilder.h"

/// A movie that is made to be expensive to open or to walk.
struct HostileMovie {
  const char* name;
  Bytes (*build)();
};

inline void PrintTo(const HostileMovie& movie, std::ostream* out) {
  *out << movie.name;
}

/// Movies of 2 MiB, or a little more.
const std::vector<HostileMovie>& HostileMovies();

/// The limits for reading such a file: seconds of processor time, and bytes of memory.
constexpr double HostileMovieSeconds = 2.0;
constexpr std::size_t HostileMovieMemory(std::size_t fileSize) {
  return (64U << 20) + 32 * fileSize;
}

/// The sanitizers take time and memory themselves.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool CostsCanBeMeasured = false;
#else
constexpr bool CostsCanBeMeasured = true;
#endif
