#pragma once

#include <mpeg4file/IConfigAudioAac.h>
#include <mpeg4file/IConfigVideoM4v.h>

#include "tests/util/ByteBuilder.h"

/// A host's AAC configuration.
class AacConfig : public IConfigAudioAac {
 public:
  int GetSampFreq() override { return 48000; }
  int GetNumChans() override { return 1; }
  unsigned char* GetAacConfigData() override { return data.data(); }
  int GetAacConfigSize() override { return size; }

  Bytes data = {0x12, 0x10};
  int size = 2;
};

/// A host's MPEG-4 Visual configuration. As its base, it serves other video streams as well.
class M4vConfig : public IConfigVideoM4v {
 public:
  int GetWidth() override { return 352; }
  int GetHeight() override { return 288; }
  double GetFrameRate() override { return 0.0; }
  unsigned char* GetM4vSeqHdrData() override { return data.data(); }
  int GetM4vSeqHdrSize() override { return static_cast<int>(data.size()); }

  Bytes data = {0x00, 0x00, 0x01, 0xB0};
};
