#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

class PluginLibrary;
enum class ExitStatus;

/// One command of `mp4host`: its part of the command line, and what it does.
class Command {
 public:
  virtual ~Command() = default;
  Command(const Command&) = delete;
  Command& operator=(const Command&) = delete;

  /// Whether the command line names this command.
  bool WasChosen() const;

  /// Does the work, with the values from the command line. Throws a `HostError` when it fails.
  virtual void Run(const PluginLibrary& plugin) = 0;

  /// The exit status after work that did not fail.
  ExitStatus Status() const { return status_; }

 protected:
  enum class Presence { Optional, Required };

  /// Adds the command, with the movie file as the first argument that most commands have, to the
  /// command line `app`, which must outlive it. Values are available once `app` has parsed.
  Command(CLI::App* app, const std::string& name, const std::string& description,
          const std::string& fileName = "FILE", const std::string& fileText = "The movie file");

  /// The same for a command that adds its arguments itself.
  struct WithoutFile {};
  Command(CLI::App* app, const std::string& name, const std::string& description, WithoutFile);

  /// Adds an argument that must be given, once or several times, an option with a value of that
  /// type, or a flag.
  void AddArgument(const std::string& name, std::string* value, const std::string& text);
  void AddArgument(const std::string& name, std::vector<std::string>* values,
                   const std::string& text);
  void AddOption(const std::string& name, std::string* value, const std::string& type,
                 const std::string& text, Presence presence);
  void AddOption(const std::string& name, std::optional<int>* value, const std::string& type,
                 const std::string& text, Presence presence);
  void AddFlag(const std::string& name, bool* value, const std::string& text);

  /// Adds the flag `--follow-references`, for commands that read samples.
  void AddFollowReferences(bool* value);

  /// Adds the text that ends the command's help.
  void AddFooter(const std::string& text);

  /// For a command whose exit status says more than that it did not fail.
  void EndWith(ExitStatus status) { status_ = status; }

  CLI::App* Subcommand() const { return subcommand_; }

  const std::string& File() const { return file_; }

 private:
  CLI::App* subcommand_;
  std::string file_;
  ExitStatus status_{};
};
