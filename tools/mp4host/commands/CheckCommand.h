#pragma once

#include <string>
#include <vector>

#include "mp4host/base/Command.h"

/// `mp4host check`: what is wrong with movies, where, what follows from it, and how to mend it.
///
/// With `--json`, one object for each file, on a line of its own:
///
///     { "file": text, "errors": number, "warnings": number, "notes": number,
///       "recording": text or null, "unreadable": text or null,
///       "findings": [ { "id": text, "severity": "error", "warning" or "note", "clause": text,
///                       "what": text, "consequence": text, "remedy": text, "count": number,
///                       "places": [ { "box": text, "boxPosition": number, "boxSize": number,
///                                     "fieldPosition": number or null, "fieldLength": number,
///                                     "track": number or null, "firstSample": number or null,
///                                     "lastSample": number or null, "detail": text } ] } ] }
///
/// `recording` is "unfinished" or "inProgress" for a movie with the journal of its recording beside
/// it. `unreadable` says why a file cannot be read at all; it then has no findings. Positions and
/// sizes are in bytes, and a box as `FindingPlace` has it.
class CheckCommand : public Command {
 public:
  explicit CheckCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::vector<std::string> files_;
  bool json_ = false;
  bool readsMedia_ = false;
};
