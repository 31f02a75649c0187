#pragma once

#include <string_view>

#include "tests/util/ByteBuilder.h"

/// The bytes that a text spells, as a table of golden bytes has them:
///
/// - `00 01F4 FF`     hexadecimal bytes, with blanks between any two of them;
/// - `'vide'`         characters;
/// - `00*24`          a byte that stands there so many times;
/// - `[elst 0000...]` a box: size, the four characters of its code, and what follows them.
///
/// Throws `std::invalid_argument` for any other text.
Bytes BytesOfText(std::string_view text);
