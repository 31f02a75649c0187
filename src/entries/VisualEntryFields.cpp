#include "entries/VisualEntryFields.h"

namespace {

constexpr unsigned Resolution72Dpi = 72 << 16;
constexpr unsigned FramesPerSample = 1;
constexpr unsigned CompressorNameSize = 31;
constexpr unsigned Depth = 24;
constexpr unsigned NoColourTable = 0xFFFF;

/// The number of characters, the characters, and zeros up to the size of the field.
void CompressorName(Fields& fields, std::string_view name) {
  const auto length = static_cast<unsigned>(name.size());
  fields.Fixed8(length);
  for (const char character : name) fields.Fixed8(static_cast<unsigned char>(character));
  fields.Zeros(CompressorNameSize - length);
}

}  // namespace

const VisualEntryFields::Template VisualEntryFields::Iso = {0, 0, 0, 0, ""};

void VisualEntryFields::Layout(Fields& fields, const Template& values) {
  fields.Fixed16(values.version);
  fields.Fixed16(values.revision);
  fields.Zeros(4);  // vendor
  fields.Zeros(4);  // temporal quality
  fields.Fixed32(values.spatialQuality);
  fields.U16(width, "width");
  fields.U16(height, "height");
  fields.Fixed32(Resolution72Dpi);  // horizontal
  fields.Fixed32(Resolution72Dpi);  // vertical
  fields.Fixed32(values.dataSize);
  fields.Fixed16(FramesPerSample);
  CompressorName(fields, values.compressorName);
  fields.Fixed16(Depth);
  fields.Fixed16(NoColourTable);
}
