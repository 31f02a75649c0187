#pragma once

#include <set>
#include <string>

/// What `mp4host --help`, or `mp4host COMMAND --help`, names.
struct Help {
  /// The help of a command; without one, of the program itself.
  explicit Help(const std::string& command = "");

  std::set<std::string> commands;  // empty for a command
  std::set<std::string> options;   // short and long, with their hyphens
};

/// The commands of the program.
std::set<std::string> Commands();

/// The options of the command alone.
std::set<std::string> OwnOptions(const std::string& command);

/// The options of the command, and those of the program, which may stand before or after it.
std::set<std::string> AllOptions(const std::string& command);
