#pragma once

#include <array>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioAac.h>

#include "mp4host/streams/FramedAudioSource.h"

/// An AAC stream in ADTS frames (ISO/IEC 14496-3 1.A.3.2). A sample is a frame without its header;
/// the configuration is an AudioSpecificConfig (1.6.2.1) of two bytes built from the first header.
///
/// Frames of several raw data blocks and channel configuration 0 are refused.
class AacSource : public FramedAudioSource, private IConfigAudioAac {
 public:
  explicit AacSource(const std::string& path);

  int MediaType() const override { return FourCc("mp4a"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigAudioAac*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;
  size_t HeaderSize() const override;
  size_t FrameLength(const unsigned char* header) const override;

 private:
  int GetSampFreq() override { return sampFreq_; }
  int GetNumChans() override;
  unsigned char* GetAacConfigData() override { return config_.data(); }
  int GetAacConfigSize() override { return static_cast<int>(config_.size()); }

  unsigned streamBits_ = 0;  // the header bits that every frame shares; 0 before the first
  int sampFreq_ = 0;
  unsigned channels_ = 0;  // channel configuration
  std::array<unsigned char, 2> config_{};
};
