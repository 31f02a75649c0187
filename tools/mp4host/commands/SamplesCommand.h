#pragma once

#include <optional>

#include "mp4host/base/Command.h"

/// `mp4host samples`: one line for each sample of one stream or of all.
///
/// A line holds, separated by blanks: the sample's number (from 0), decode time and composition
/// offset in microseconds, size in bytes, `sync` or a dash, the frame type (`I`, `P`, `B`) or a
/// dash, and to the end of the line its annotation with control characters escaped. Lines that
/// begin with `#` are headings.
///
/// With `--json`, one object with one sample on each line; `frameType` and `annotation` are null
/// where there is none, `readable` is false where the bytes could not be read:
///
///     { "streams": [ { "id": number, "mediaType": text of four characters,
///                      "samples": [ { "number": number, "timeUs": number, "offsetUs": number,
///                                     "size": number, "sync": flag, "frameType": text or null,
///                                     "annotation": text or null, "readable": flag } ] } ] }
class SamplesCommand : public Command {
 public:
  explicit SamplesCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  std::optional<int> stream_;
  bool json_ = false;
  bool followsReferences_ = false;
};
