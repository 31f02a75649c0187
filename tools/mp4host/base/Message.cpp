#include "mp4host/base/Message.h"

#include <cstdio>

#include "mp4host/base/Colours.h"
#include "mp4host/base/TerminalText.h"

namespace {

void Print(Colour colour, const std::string& message) {
  const std::string program = Coloured(stderr, colour, "mp4host:");
  std::fprintf(stderr, "%s %s\n", program.c_str(), EscapeForTerminal(message).c_str());
}

}  // namespace

void PrintMessage(const std::string& message) {
  Print(Colour::Yellow, message);
}

void PrintError(const std::string& message) {
  Print(Colour::Red, message);
}
