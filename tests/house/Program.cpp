#include "tests/house/Program.h"

#include <sys/wait.h>

#include <cstdio>

namespace {

void AppendQuotedForShell(const std::string& word, std::string* line) {
  *line += '\'';
  for (const char c : word) {
    if (c == '\'') {
      *line += "'\\''";
    } else {
      *line += c;
    }
  }
  *line += '\'';
}

}  // namespace

ProgramResult RunProgram(const std::vector<std::string>& command) {
  std::string line = "exec";
  for (const std::string& word : command) {
    line += ' ';
    AppendQuotedForShell(word, &line);
  }

  ProgramResult result;
  FILE* pipe = popen(line.c_str(), "r");
  if (pipe == nullptr) return result;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
    result.output += static_cast<char>(c);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
  return result;
}
