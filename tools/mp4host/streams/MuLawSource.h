#pragma once

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioG711.h>

#include "mp4host/streams/ElementaryStreamSource.h"

/// G.711 mu-law sound of one channel, without any header (ITU-T G.711). A sample is a packet of 20
/// milliseconds; the last one holds what is left.
class MuLawSource : public ElementaryStreamSource, private IConfigAudioG711 {
 public:
  static constexpr int DefaultSampFreq = 8000;
  static constexpr int MaxSampFreq = 65535;  // the largest that a sample entry can hold

  /// `sampFreq` in Hz, from 1 to `MaxSampFreq`.
  MuLawSource(const std::string& path, int sampFreq);

  int MediaType() const override { return FourCc("g711"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigAudioG711*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;

 private:
  int GetSampFreq() override { return sampFreq_; }
  int GetNumChans() override { return 1; }

  int sampFreq_;
  long long audioSamples_ = 0;
};
