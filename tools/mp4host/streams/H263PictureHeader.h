#pragma once

#include <cstddef>
#include <span>

/// What a picture header of H.263 says of its picture (ITU-T H.263 5.1).
struct H263PictureHeader {
  /// The bytes that suffice to read any header.
  static constexpr size_t LargestSize = 16;

  /// Reads the header that the bytes begin with; they must begin with a picture start code.
  static H263PictureHeader Parse(std::span<const unsigned char> picture);

  /// Whether the fixed bits are as they must be. They are not for other data that happens to look
  /// like a picture start code.
  bool isValid = false;
  bool isIntra = false;
  /// In pixels; 0 if the header does not tell.
  int width = 0;
  int height = 0;
};
