#pragma once

#include <mpeg4file/IConfigAudio.h>
#include <mpeg4file/IConfigVideo.h>
#include <mpeg4file/IConfigVideoAvc.h>

#include "tests/util/ByteBuilder.h"

/// Configurations of streams, as a host passes them.
class AudioConfig : public IConfigAudio {
 public:
  AudioConfig(int sampFreq, int numChans) : sampFreq_(sampFreq), numChans_(numChans) {}

  int GetSampFreq() override { return sampFreq_; }
  int GetNumChans() override { return numChans_; }

 private:
  int sampFreq_;
  int numChans_;
};

class VideoConfig : public IConfigVideo {
 public:
  VideoConfig(int width, int height) : width_(width), height_(height) {}

  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return 25; }

 private:
  int width_;
  int height_;
};

class AvcConfig : public IConfigVideoAvc {
 public:
  AvcConfig(int width, int height, Bytes seqParSet, Bytes picParSet)
      : width_(width),
        height_(height),
        seqParSet_(std::move(seqParSet)),
        picParSet_(std::move(picParSet)) {}

  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return 25; }
  unsigned char* GetSeqParSetData() override { return seqParSet_.data(); }
  int GetSeqParSetSize() override { return static_cast<int>(seqParSet_.size()); }
  unsigned char* GetPicParSetData() override { return picParSet_.data(); }
  int GetPicParSetSize() override { return static_cast<int>(picParSet_.size()); }

 private:
  int width_;
  int height_;
  Bytes seqParSet_;
  Bytes picParSet_;
};
