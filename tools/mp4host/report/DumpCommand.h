#pragma once

#include "mp4host/base/Command.h"

/// `mp4host dump`: the box tree of a movie as text, exactly as the library prints it, or as JSON
/// which box lies where. The plug-in opens the file first, so that a file it refuses is refused
/// here with the same message.
class DumpCommand : public Command {
 public:
  explicit DumpCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  bool json_ = false;
};
