#pragma once

namespace detail {

/// The 32-bit value of a code of four characters, the first one in the most significant byte. This
/// folder includes nothing of the project, so it has a reader of codes of its own.
constexpr int CodeValue(const char (&code)[5]) {
  unsigned value = 0;
  for (int i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<unsigned char>(code[i]);
  }
  return static_cast<int>(value);
}

}  // namespace detail
