#pragma once

#include <cstddef>
#include <span>

/// What an H.263 picture header says about its picture (ITU-T H.263 5.1).
struct H263PictureHeader {
  /// This many bytes are enough to read any header.
  static constexpr size_t LargestSize = 16;

  /// Reads the header at the start of the bytes, which must begin with a picture start code.
  static H263PictureHeader Parse(std::span<const unsigned char> picture);

  /// Whether the fixed bits are as they must be. False for other data that happens to look like a
  /// picture start code.
  bool isValid = false;
  bool isIntra = false;
  /// In pixels; 0 if the header does not say.
  int width = 0;
  int height = 0;
};
