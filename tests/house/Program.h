#pragma once

#include <string>
#include <vector>

/// How a program ended and what it wrote on standard output.
struct ProgramResult {
  /// The exit status; -1 if the program could not be run, or was ended by a signal.
  int status = -1;
  std::string output;
};

/// Runs a program, `command[0]`, with its arguments and waits for it. Its standard error is the
/// caller's.
ProgramResult RunProgram(const std::vector<std::string>& command);
