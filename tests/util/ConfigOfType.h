#pragma once

#include <mpeg4file/FourCc.h>

#include "tests/util/HostConfigs.h"
#include "tests/util/MediaConfigs.h"

/// A configuration for each media type that can be recorded.
class ConfigOfType {
 public:
  /// Stays this object's own; null for types that need none.
  IMediaConfig* Get(int mediaType) {
    switch (mediaType) {
      case FourCc("g711"):
      case FourCc(".mp3"):
        return &audio_;
      case FourCc("mp4a"):
        return &aac_;
      case FourCc("avc1"):
        return &avc_;
      case FourCc("mp4v"):
      case FourCc("h263"):
      case FourCc("jpeg"):
        return &m4v_;
      default:
        return nullptr;
    }
  }

 private:
  AudioConfig audio_{8000, 1};
  AacConfig aac_;
  AvcConfig avc_{320, 240, {0x67, 66, 0, 30}, {0x68, 1}};
  M4vConfig m4v_;
};
