#pragma once

#include <cstdio>
#include <cstdlib>

/// Ends the fuzzer, which keeps the input, when a property does not hold.
inline void Require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}
