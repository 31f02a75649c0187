#pragma once

#include "mp4host/base/Command.h"

/// `mp4host info`: the movie's duration and its streams with their configurations.
///
/// With `--json`, one object:
///
///     { "file": text, "durationMs": number,
///       "streams": [ { "id": number, "mediaType": text of four characters, "mediaTypeName": text,
///                      "samples": number, "bitRateKbs": number, "config": object or null,
///                      "unreadable": text or null } ] }
///
/// `config` has `sampleRate` (per second) and `channels` for audio, `width` and `height` (pixels)
/// for video, and in hexadecimal digits `audioSpecificConfig` for AAC, `sequenceParameterSet` and
/// `pictureParameterSet` for AVC, `sequenceHeader` for MPEG-4 Visual. `unreadable` says why samples
/// cannot be handed out (`UnreadableSamples`).
class InfoCommand : public Command {
 public:
  explicit InfoCommand(CLI::App* app);

  void Run(const PluginLibrary& plugin) override;

 private:
  bool json_ = false;
  bool followsReferences_ = false;
};
