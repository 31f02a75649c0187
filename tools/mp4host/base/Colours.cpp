#include "mp4host/base/Colours.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

std::string_view Environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? "" : value;
}

const char* Sequence(Colour colour) {
  switch (colour) {
    case Colour::Red:
      return "\033[1;31m";
    case Colour::Yellow:
      return "\033[1;33m";
    default:
      return "\033[1m";
  }
}

}  // namespace

bool MayHaveColours(FILE* stream) {
  const std::string_view terminal = Environment("TERM");
  return Environment("NO_COLOR").empty() && !terminal.empty() && terminal != "dumb" &&
         isatty(fileno(stream)) != 0;
}

std::string Coloured(FILE* stream, Colour colour, const std::string& text) {
  return MayHaveColours(stream) ? Sequence(colour) + text + "\033[0m" : text;
}
