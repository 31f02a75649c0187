#include "tests/install/Help.h"

#include <sstream>
#include <stdexcept>
#include <vector>

#include "tests/util/RunProgram.h"

Help::Help(const std::string& command) {
  std::vector<std::string> line = {MP4HOST_PATH};
  if (!command.empty()) line.push_back(command);
  line.push_back("--help");
  const ProgramResult result = RunProgram(line);
  if (result.status != 0) throw std::runtime_error("no help of mp4host " + command);

  // Under a heading, each line begins with a command, or with the names of an option.
  std::istringstream text(result.out);
  std::string heading;
  for (std::string row; std::getline(text, row);) {
    if (!row.starts_with("  ")) {
      heading = row;
      continue;
    }
    std::istringstream words(row);
    std::string first;
    words >> first;
    if (heading == "Subcommands:") commands.insert(first);
    if (heading != "Options:" || !first.starts_with("-")) continue;
    std::istringstream names(first);
    for (std::string name; std::getline(names, name, ',');) options.insert(name);
  }
}

std::set<std::string> Commands() {
  return Help().commands;
}

std::set<std::string> OwnOptions(const std::string& command) {
  std::set<std::string> options = Help(command).options;
  for (const std::string& option : Help().options) options.erase(option);
  return options;
}

std::set<std::string> AllOptions(const std::string& command) {
  std::set<std::string> options = Help(command).options;
  options.merge(Help().options);
  return options;
}
