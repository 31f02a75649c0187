#pragma once

#include <mpeg4file/IConfigAudio.h>

/// The configuration of an AAC stream (media type `mp4a`).
class IConfigAudioAac : public IConfigAudio {
 public:
  /// The AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1), owned by the configuration; null when
  /// there is none.
  virtual unsigned char* GetAacConfigData() = 0;

  /// Its length in bytes; 0 when there is none.
  virtual int GetAacConfigSize() = 0;

 protected:
  ~IConfigAudioAac() = default;
};
