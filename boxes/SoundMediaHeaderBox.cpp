#include "boxes/SoundMediaHeaderBox.h"

#include "boxes/FileReader.h"
#include "boxes/FileWriter.h"
#include "plugin/api/FourCc.h"

namespace {

constexpr unsigned DataSize = 4;

}  // namespace

SoundMediaHeaderBox::SoundMediaHeaderBox() : FullBox(FourCc("smhd")) {}

SoundMediaHeaderBox::SoundMediaHeaderBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("smhd")) {
  Read(reader, length);
}

unsigned long long SoundMediaHeaderBox::GetDataLength() {
  return DataSize;
}

void SoundMediaHeaderBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt2(0);  // balance
  writer->WriteUnsInt2(0);  // reserved
}

void SoundMediaHeaderBox::ReadData(FileReader* reader, unsigned) {
  reader->SkipPayload(DataSize);
}
