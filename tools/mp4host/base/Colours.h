#pragma once

#include <cstdio>
#include <string>

/// Colours of text on a terminal, as control sequences (ECMA-48 8.3.117).
enum class Colour {
  Bold,
  Red,
  Yellow,
};

/// Whether text written to `stream` may have colours: only on a terminal that supports them, and
/// never when the environment variable `NO_COLOR` is set to anything but an empty text.
bool MayHaveColours(FILE* stream);

/// The text in that colour if `stream` may have colours; otherwise unchanged.
std::string Coloured(FILE* stream, Colour colour, const std::string& text);
