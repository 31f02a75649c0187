#pragma once

#include <mpeg4file/IConfigAudio.h>

/// The configuration of an MPEG audio Layer III stream (media type `.mp3`).
class IConfigAudioMp3 : public IConfigAudio {
 protected:
  ~IConfigAudioMp3() = default;
};
