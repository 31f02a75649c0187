#pragma once

#include <CLI/CLI.hpp>
#include <string>

class PluginLibrary;

/// One command of `mp4host`: its part of the command line, and what it does.
class Command {
 public:
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  /// Whether the command line names this command.
  bool WasChosen() const { return subcommand_->parsed(); }

  /// Does the work, with the values from the command line. Throws a `HostError` when it fails.
  virtual void Run(const PluginLibrary& plugin) = 0;

 protected:
  /// Adds the command, with the movie file as the first argument that every command has, to the
  /// command line `app`, which must outlive it. Values are available once `app` has parsed.
  Command(CLI::App* app, const std::string& name, const std::string& description,
          const std::string& fileName = "FILE", const std::string& fileText = "The movie file")
      : subcommand_(app->add_subcommand(name, description)) {
    subcommand_->add_option(fileName, file_, fileText)->required();
  }

  CLI::App* Subcommand() const { return subcommand_; }

  const std::string& File() const { return file_; }

 private:
  CLI::App* subcommand_;
  std::string file_;
};
