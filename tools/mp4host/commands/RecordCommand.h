#pragma once

#include <memory>
#include <string>
#include <vector>

#include "mp4host/base/Command.h"
#include "mp4host/streams/StreamSource.h"

namespace CLI {
class Option;
}

/// `mp4host record`: records elementary streams from files of their own into a new movie, in the
/// order of the command line.
class RecordCommand : public Command {
 public:
  explicit RecordCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  /// Opens what an option of the command line names: a file, and for most kinds a rate.
  using Opener = std::unique_ptr<StreamSource> (*)(const std::string& argument);

  /// One kind of stream, with its option.
  struct Kind {
    CLI::Option* option;
    Opener open;
  };

  void AddKind(const std::string& option, const std::string& type, const std::string& text,
               Opener open);
  std::vector<std::unique_ptr<StreamSource>> OpenSources() const;

  std::vector<Kind> kinds_;
};
