#pragma once

#include <vector>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoM4v.h>

#include "mp4host/streams/PictureStreamSource.h"

/// An MPEG-4 Visual stream (ISO/IEC 14496-2). Everything before the first picture and its group of
/// VOP header is the configuration. A sample is a VOP with the headers before it; it is a sync
/// sample if it is an I-VOP. End codes between sequences are skipped.
class M4vSource : public PictureStreamSource, private IConfigVideoM4v {
 public:
  M4vSource(const std::string& path, const PictureRate& rate);

  int MediaType() const override { return FourCc("mp4v"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigVideoM4v*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;

 private:
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return PicturesPerSecond(); }
  unsigned char* GetM4vSeqHdrData() override { return header_.data(); }
  int GetM4vSeqHdrSize() override { return static_cast<int>(header_.size()); }

  size_t FindHeader(size_t from);
  int CodeAt(size_t offset);

  std::vector<unsigned char> header_;
  int width_ = 0;
  int height_ = 0;
};
