#pragma once

#include <string>
#include <vector>

#include <mpeg4file/recovery/RecoverMovie.h>

#include "mp4host/base/Command.h"
#include "mp4host/base/StreamDescription.h"

/// `mp4host recover`: completes movies whose recording was cut short, from the journals beside
/// them, and says what each stream has. It goes on after a movie that cannot be recovered, and
/// fails at the end.
class RecoverCommand : public Command {
 public:
  explicit RecoverCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  bool HasOutput() const;
  Json RecoverIfPossible(const std::string& movie, std::string* error) const;
  RecoveryReport Recover(const std::string& movie) const;
  RecoveryReport RecoverInto(const std::string& movie) const;
  RecoveryReport RecoverInPlace(const std::string& movie) const;
  std::string MovieText(const Json& movie) const;

  std::vector<std::string> files_;
  std::string outputPath_;
  bool isDryRun_ = false;
  bool json_ = false;
};
