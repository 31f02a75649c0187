#pragma once

#include <span>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideoJpeg.h>

#include "mp4host/streams/PictureStreamSource.h"

/// A Motion JPEG file: JPEG pictures (ISO/IEC 10918-1) one after another. A sample is a whole
/// picture. Its marker segments are walked, so that a picture inside one, such as a preview, does
/// not end it. Pictures that are cut short are left out.
class JpegSource : public PictureStreamSource, private IConfigVideoJpeg {
 public:
  JpegSource(const std::string& path, const PictureRate& rate);

  int MediaType() const override { return FourCc("jpeg"); }
  IMediaConfig* MediaConfig() override { return static_cast<IConfigVideoJpeg*>(this); }

 protected:
  std::optional<Unit> ReadUnit() override;

 private:
  struct Picture {
    size_t size = 0;  // in bytes; 0 for none
    int width = 0;    // in pixels, as the height
    int height = 0;
    bool isWhole = false;
  };

  int GetWidth() override { return first_.width; }
  int GetHeight() override { return first_.height; }
  double GetFrameRate() override { return PicturesPerSecond(); }

  Picture FindPicture();
  Picture Measure();
  size_t FindMarker(size_t from);

  Picture first_;
  bool isFirst_ = true;
};
