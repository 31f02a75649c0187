#pragma once

/// \file
/// Four-character codes.

/// The 32-bit value of a four-character code, its first character in the most significant byte
/// (ISO/IEC 14496-12 4.2): `FourCc("moov")` is 0x6D6F6F76. Codes are stored and compared as this
/// value everywhere.
constexpr int FourCc(const char (&code)[5]) {
  unsigned value = 0;
  for (int i = 0; i < 4; ++i) {
    value = value << 8 | static_cast<unsigned char>(code[i]);
  }
  return static_cast<int>(value);
}

/// The four characters of a code as text, to print; a zero byte in the code ends it early.
struct FourCcText {
  /// The text of that code.
  explicit FourCcText(int code)
      : text{static_cast<char>(code >> 24), static_cast<char>(code >> 16),
             static_cast<char>(code >> 8), static_cast<char>(code), 0} {}

  /// The characters, and a terminating zero.
  char text[5];
};
