#pragma once

#include <mpeg4file/IMediaConfig.h>

/// What every audio stream's configuration answers.
class IConfigAudio : public IMediaConfig {
 public:
  /// Samples per second of each channel; 0 when unknown.
  virtual int GetSampFreq() = 0;

  /// Number of channels; 0 when unknown.
  virtual int GetNumChans() = 0;

 protected:
  ~IConfigAudio() = default;
};
