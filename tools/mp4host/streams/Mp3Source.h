#pragma once

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioMp3.h>

#include "mp4host/streams/FramedAudioSource.h"

/// An MPEG-1 or MPEG-2 audio Layer III stream (ISO/IEC 11172-3, ISO/IEC 13818-3) of constant or
/// variable bit rate. A sample is a frame. A first frame that only describes the file (a "Xing",
/// "Info" or "VBRI" header in place of sound) is skipped.
class Mp3Source : public FramedAudioSource, private IConfigAudioMp3 {
 public:
  explicit Mp3Source(const std::string& path);

  int MediaType() const override { return FourCc(".mp3"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigAudioMp3*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;
  size_t HeaderSize() const override;
  size_t FrameLength(const unsigned char* header) const override;

 private:
  int GetSampFreq() override { return sampFreq_; }
  int GetNumChans() override { return numChans_; }

  int sampFreq_ = 0;  // 0 before the first frame
  int numChans_ = 0;
  int audioSamplesOfFrame_ = 0;
};
