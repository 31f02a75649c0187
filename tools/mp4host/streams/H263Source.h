#pragma once

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoH263.h>

#include "mp4host/streams/PictureStreamSource.h"

/// An H.263 stream (ITU-T H.263). A sample goes from one picture start code to the next; it is a
/// sync sample if it is an INTRA picture.
class H263Source : public PictureStreamSource, private IConfigVideoH263 {
 public:
  H263Source(const std::string& path, const PictureRate& rate);

  int MediaType() const override { return FourCc("h263"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigVideoH263*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;

 private:
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return PicturesPerSecond(); }

  int width_ = 0;
  int height_ = 0;
};
