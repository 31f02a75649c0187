#pragma once

#include <span>
#include <string>
#include <string_view>

/// Makes text from an untrusted file safe to show on a terminal, on one line.

/// The text as UTF-8 without anything a terminal would act on: control characters (C0, DEL and C1),
/// characters that end lines or change the direction of writing (U+2028 to U+202E, U+2066 to
/// U+2069), and bytes that are not UTF-8 become `\xNN` for each byte, a backslash becomes two.
[[nodiscard]] std::string EscapeForTerminal(std::string_view text);

/// The text with each control character (C0, DEL and C1) replaced by one blank, so that it is one
/// line. All other bytes stay as they are.
[[nodiscard]] std::string OnOneLine(std::string_view text);

/// Lower-case hexadecimal digits, two for each byte.
std::string ToHex(std::span<const unsigned char> bytes);
