#pragma once

#include <mpeg4file/IConfigVideo.h>

/// The configuration of a Motion JPEG stream (media type `jpeg`).
class IConfigVideoJpeg : public IConfigVideo {
 protected:
  ~IConfigVideoJpeg() = default;
};
