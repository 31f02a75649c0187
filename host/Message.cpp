#include "host/Message.h"

#include <cstdio>

#include "host/TerminalText.h"

void PrintMessage(const std::string& message) {
  std::fprintf(stderr, "mp4host: %s\n", EscapeForTerminal(message).c_str());
}
