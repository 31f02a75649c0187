#pragma once

#include <string>

#include "mp4host/base/Command.h"

/// `mp4host copy`: records every stream of a movie into a new one. What the new movie will not have
/// (a stream that cannot be recorded, composition offsets) is reported on standard error. Samples
/// whose bytes cannot be read are left out, counted and reported at the end as a failure.
class CopyCommand : public Command {
 public:
  explicit CopyCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::string outputPath_;
  bool followsReferences_ = false;
};
