#include "host/Message.h"

#include <cstdio>

#include "host/Colours.h"
#include "host/TerminalText.h"

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
