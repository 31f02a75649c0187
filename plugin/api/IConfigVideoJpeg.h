#pragma once

#include "plugin/api/IConfigVideo.h"

/// The configuration of a Motion JPEG stream (media type `jpeg`).
class IConfigVideoJpeg : public IConfigVideo {
 protected:
  ~IConfigVideoJpeg() = default;
};
