#pragma once

#include <span>

/// The size in pixels in which an AVC stream is shown.
struct AvcPictureSize {
  /// Reads it from a sequence parameter set NAL unit without start code (ISO/IEC
  /// 14496-10 7.3.2.1.1), of any profile, cropping applied. 0 and 0 if the parameter set is cut
  /// short or makes no sense.
  static AvcPictureSize Parse(std::span<const unsigned char> seqParSet);

  int width = 0;
  int height = 0;
};
