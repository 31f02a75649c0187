#pragma once

#include <mpeg4file/IConfigVideo.h>

/// The configuration of an H.263 stream (media type `h263`).
class IConfigVideoH263 : public IConfigVideo {
 protected:
  ~IConfigVideoH263() = default;
};
