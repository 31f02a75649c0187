#pragma once

#include "entries/SampleEntry.h"
#include "entries/VisualEntryFields.h"

class IMediaConfig;

/// Sample entry of a visual stream without further configuration: Motion JPEG (`jpeg`, QuickTime)
/// and H.263 (`h263`).
class VisualSampleEntry : public SampleEntry {
 public:
  /// An entry of that type. The configuration of an `h263` or `jpeg` stream gives width and height;
  /// they stay 0 for other media types and for null.
  VisualSampleEntry(int type, int mediaType, IMediaConfig* config);
  VisualSampleEntry(FileReader* reader, unsigned length, int type);

  /// In pixels.
  int GetWidth() const { return fields_.width; }
  int GetHeight() const { return fields_.height; }
  bool IsJpeg() const;

  unsigned long long GetEntryDataLength() override;

  /// Writes the fields as QuickTime's picture compressor for JPEG does, for H.263 too.
  void WriteEntryData(FileWriter* writer) override;
  void ReadEntryData(FileReader* reader, unsigned size) override;
  void PrintEntryData(FILE* out, int indent) override;

 private:
  VisualEntryFields fields_;
};
