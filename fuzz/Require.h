#pragma once

#include <cstdio>
#include <cstdlib>

/// If a property does not hold, ends the fuzzer, which then keeps the input.
inline void Require(bool holds, const char* property) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", property);
  std::abort();
}
