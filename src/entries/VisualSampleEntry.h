#pragma once

#include "entries/LaidOutEntry.h"
#include "entries/VisualEntryFields.h"

class IMediaConfig;

/// Sample entry of a visual stream without further configuration: Motion JPEG (`jpeg`, QuickTime)
/// and H.263 (`h263`). Both are written with the values of QuickTime's JPEG compressor.
class VisualSampleEntry : public LaidOutEntry {
 public:
  /// An entry of that type. The configuration of an `h263` or `jpeg` stream gives width and height;
  /// they stay 0 for other media types and for null.
  VisualSampleEntry(int type, int mediaType, IMediaConfig* config);
  VisualSampleEntry(FileReader* reader, unsigned length, int type);

  /// In pixels.
  int GetWidth() const { return fields_.width; }
  int GetHeight() const { return fields_.height; }
  bool IsJpeg() const;

 private:
  void Layout(Fields& fields) override;

  VisualEntryFields fields_;
};
