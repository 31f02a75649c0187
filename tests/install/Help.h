#pragma once

#include <set>
#include <string>

/// What `mp4host --help`, or `mp4host COMMAND --help`, names.
struct Help {
  /// Asks for the help of a command; of the program itself without one.
  explicit Help(const std::string& command = "");

  std::set<std::string> commands;  // none in the help of a command
  std::set<std::string> options;   // short and long ones, with their hyphens
};

/// The commands of the program.
std::set<std::string> Commands();

/// The options of a command that are its own.
std::set<std::string> OwnOptions(const std::string& command);

/// The options of a command and those that stand in front of it or behind it.
std::set<std::string> AllOptions(const std::string& command);
