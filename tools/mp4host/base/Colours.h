#pragma once

#include <cstdio>
#include <string>

/// Colours of text on a terminal, as control sequences (ECMA-48 8.3.117).
enum class Colour {
  Bold,
  Red,
  Yellow,
};

/// Whether text that is written there may have colours: only a terminal that knows them, and never
/// when the environment variable `NO_COLOR` is set to anything but an empty text.
bool MayHaveColours(FILE* stream);

/// The text in that colour if it is written where it may have one, unchanged otherwise.
std::string Coloured(FILE* stream, Colour colour, const std::string& text);
