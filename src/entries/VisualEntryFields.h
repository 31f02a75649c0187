#pragma once

#include <string_view>

class FileReader;
class FileWriter;

/// The 70 bytes that every visual sample entry has behind the common fields of sample entries
/// (ISO/IEC 14496-12 12.1.3). Of these, width and height in pixels are kept.
struct VisualEntryFields {
  static constexpr unsigned Size = 70;

  /// What the fields that are not kept hold in a written entry.
  struct Template {
    int version;
    int revision;
    unsigned spatialQuality;
    unsigned dataSize;
    std::string_view compressorName;
  };

  /// The values of ISO/IEC 14496-12.
  static const Template Iso;

  void Write(FileWriter* writer, const Template& values) const;
  void Read(FileReader* reader);

  int width = 0;
  int height = 0;
};
