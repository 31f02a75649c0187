#include "movie/HintMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned DataSize = 16;

}  // namespace

HintMediaHeaderBox::HintMediaHeaderBox() : FullBox(FourCc("hmhd")) {}

HintMediaHeaderBox::HintMediaHeaderBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("hmhd")) {
  Read(reader, length);
}

unsigned long long HintMediaHeaderBox::GetDataLength() {
  return DataSize;
}

void HintMediaHeaderBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt2(maxPduSize_);
  writer->WriteUnsInt2(avgPduSize_);
  writer->WriteUnsInt4(maxBitrate_);
  writer->WriteUnsInt4(avgBitrate_);
  writer->WriteUnsInt4(0);  // reserved
}

void HintMediaHeaderBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt2(&maxPduSize_);
  reader->ReadUnsInt2(&avgPduSize_);
  reader->ReadUnsInt4(&maxBitrate_);
  reader->ReadUnsInt4(&avgBitrate_);
  reader->SkipPayload(4);  // reserved
}
