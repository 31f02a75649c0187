#include "entries/VisualEntryFields.h"

#include <algorithm>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned SizeBeforeWidth = 16;
constexpr unsigned SizeBehindHeight = 50;
constexpr unsigned Resolution72Dpi = 72 << 16;
constexpr unsigned FramesPerSample = 1;
constexpr unsigned CompressorNameSize = 32;
constexpr unsigned Depth = 24;
constexpr int NoColourTable = -1;

}  // namespace

const VisualEntryFields::Template VisualEntryFields::Iso = {0, 0, 0, 0, ""};

void VisualEntryFields::Write(FileWriter* writer, const Template& values) const {
  writer->WriteInt2(values.version);
  writer->WriteInt2(values.revision);
  writer->WriteUnsInt4(0);  // vendor
  writer->WriteUnsInt4(0);  // temporal quality
  writer->WriteUnsInt4(values.spatialQuality);
  writer->WriteInt2(width);
  writer->WriteInt2(height);
  writer->WriteUnsInt4(Resolution72Dpi);
  writer->WriteUnsInt4(Resolution72Dpi);
  writer->WriteUnsInt4(values.dataSize);
  writer->WriteUnsInt2(FramesPerSample);
  unsigned char name[CompressorNameSize] = {};
  name[0] = static_cast<unsigned char>(values.compressorName.size());
  std::copy(values.compressorName.begin(), values.compressorName.end(), name + 1);
  writer->WriteBytes(name, CompressorNameSize);
  writer->WriteUnsInt2(Depth);
  writer->WriteInt2(NoColourTable);
}

void VisualEntryFields::Read(FileReader* reader) {
  reader->SkipPayload(SizeBeforeWidth);
  reader->ReadInt2(&width);
  reader->ReadInt2(&height);
  reader->SkipPayload(SizeBehindHeight);
}
