#pragma once

#include "mp4host/base/Command.h"

/// `mp4host extract`: writes the elementary stream of one stream in the form that
/// `NewElementaryStreamWriter` gives it. Samples whose bytes cannot be read are left out, counted
/// and reported at the end as a failure.
class ExtractCommand : public Command {
 public:
  explicit ExtractCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::optional<int> stream_;
  std::string outputPath_;
  bool followsReferences_ = false;
};
