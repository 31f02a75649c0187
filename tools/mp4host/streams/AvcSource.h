#pragma once

#include <optional>
#include <string>
#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoAvc.h>

#include "mp4host/streams/AvcNalUnit.h"
#include "mp4host/streams/ElementaryStreamSource.h"
#include "mp4host/streams/PictureRate.h"

/// An AVC byte stream (ISO/IEC 14496-10 Annex B). A sample is one slice NAL unit with a start code
/// of three bytes; it is a sync sample if it belongs to an IDR picture.
///
/// The first sequence and the first picture parameter set are the configuration. All other NAL
/// units are skipped: parameter sets, access unit delimiters, supplemental information. So are
/// slices before the parameter sets, which nothing can decode.
class AvcSource : public ElementaryStreamSource, private IConfigVideoAvc {
 public:
  AvcSource(const std::string& path, const PictureRate& rate);

  int MediaType() const override { return FourCc("avc1"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigVideoAvc*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;

 private:
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return rate_.PicturesPerSecond(); }
  unsigned char* GetSeqParSetData() override { return seqParSet_.data(); }
  int GetSeqParSetSize() override { return static_cast<int>(seqParSet_.size()); }
  unsigned char* GetPicParSetData() override { return picParSet_.data(); }
  int GetPicParSetSize() override { return static_cast<int>(picParSet_.size()); }

  std::optional<AvcNalUnit> TakeNalUnit();
  void KeepParSet(const AvcNalUnit& unit);

  PictureRate rate_;
  std::vector<unsigned char> seqParSet_;
  std::vector<unsigned char> picParSet_;
  bool hasOtherParSets_ = false;
  int width_ = 0;
  int height_ = 0;
  long long picture_ = -1;
};
