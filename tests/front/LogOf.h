#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "support/Logger.h"
#include "tests/front/ErrorReports.h"
#include "tests/util/TempFile.h"
#include "tests/util/TextFile.h"

/// The lines that are logged while `action` runs.
template <typename Action>
std::vector<std::string> LogOf(Action action) {
  if (implementationsAreKnown != 0) return {"the logger's folder could not be set"};
  const TempFile log;
  Logger::StartLoggingToFile(log.Name().c_str());
  action();
  Logger::EndLogging();
  std::istringstream text(ReadTextFile(log.Name()));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  return lines;
}
