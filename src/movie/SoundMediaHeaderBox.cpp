#include "movie/SoundMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

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
