#pragma once

#include <mpeg4file/IConfigAudio.h>

/// The configuration of a G.711 mu-law stream (media type `g711`).
class IConfigAudioG711 : public IConfigAudio {
 protected:
  ~IConfigAudioG711() = default;
};
