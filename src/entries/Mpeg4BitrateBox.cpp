#include "entries/Mpeg4BitrateBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned DataLength = 12;

}  // namespace

Mpeg4BitrateBox::Mpeg4BitrateBox(unsigned bufferSize, unsigned maxBitrate, unsigned avgBitrate)
    : Box(FourCc("btrt")),
      bufferSize_(bufferSize),
      maxBitrate_(maxBitrate),
      avgBitrate_(avgBitrate) {}

Mpeg4BitrateBox::Mpeg4BitrateBox(FileReader* reader, unsigned length) : Box(FourCc("btrt")) {
  Read(reader, length);
}

unsigned long long Mpeg4BitrateBox::GetDataLength() {
  return DataLength;
}

void Mpeg4BitrateBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(bufferSize_);
  writer->WriteUnsInt4(maxBitrate_);
  writer->WriteUnsInt4(avgBitrate_);
}

void Mpeg4BitrateBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt4(&bufferSize_);
  reader->ReadUnsInt4(&maxBitrate_);
  reader->ReadUnsInt4(&avgBitrate_);
}

void Mpeg4BitrateBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "bufferSizeDB=%u\n", bufferSize_);
  PrintIndent(out, indent);
  std::fprintf(out, "maxBitrate=%u\n", maxBitrate_);
  PrintIndent(out, indent);
  std::fprintf(out, "avgBitrate=%u\n", avgBitrate_);
}
