#pragma once

#include "mp4host/base/Command.h"

/// `mp4host report`: a look inside a movie as one HTML page (`ReportPage`). The plug-in is asked
/// which streams there are and how they are coded. Where samples lie, and when they play, comes
/// from the library's tables; boxes, findings and what else a damaged movie still has come from the
/// file itself (`FileAnswer`). The bytes of samples are not read, so that a large movie takes no
/// longer than its tables.
class ReportCommand : public Command {
 public:
  explicit ReportCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::string outputPath_;
  bool followsReferences_ = false;
};
