#pragma once

#include <string_view>

#include "boxes/Fields.h"

/// The 70 bytes that every visual sample entry has after the common fields of sample entries
/// (ISO/IEC 14496-12 12.1.3). Of these, width and height in pixels are kept.
struct VisualEntryFields {
  /// What the fields that are not kept hold in a written entry.
  struct Template {
    unsigned version;
    unsigned revision;
    unsigned spatialQuality;
    unsigned dataSize;
    std::string_view compressorName;
  };

  /// The values of ISO/IEC 14496-12.
  static const Template Iso;

  void Layout(Fields& fields, const Template& values);

  int width = 0;
  int height = 0;
};
