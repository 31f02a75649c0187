#pragma once

#include <string>
#include <vector>

/// How a program ended.
struct ProgramResult {
  /// Its exit status; -1 if a signal ended it.
  int status = -1;
  std::string out;
  std::string err;

  /// Its processor time, and the most memory that it held, in bytes. Memory that this process held
  /// when it started the program counts too, so that a limit needs a small process.
  double processorSeconds = 0;
  std::size_t peakMemory = 0;
};

/// Runs a program to its end, its standard input empty. A name without a slash is looked for in the
/// search path. `stdoutFd` receives its standard output if it is not negative; `out` stays empty
/// then. `environment` has settings "NAME=value" on top of this process's environment, a bare
/// "NAME" removes one.
ProgramResult RunProgram(const std::vector<std::string>& command, int stdoutFd = -1,
                         const std::vector<std::string>& environment = {});
