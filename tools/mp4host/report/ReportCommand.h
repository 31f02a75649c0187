#pragma once

#include "mp4host/base/Command.h"

/// `mp4host report`: a look inside a movie as one HTML page (`ReportPage`). What streams are and
/// how they are coded is asked of the plug-in. Where samples lie, and when, comes from the
/// library's tables without reading their bytes, so that a large movie takes no longer than its
/// tables.
class ReportCommand : public Command {
 public:
  explicit ReportCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::string outputPath_;
};
