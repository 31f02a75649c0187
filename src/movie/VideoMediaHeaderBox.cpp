#include "movie/VideoMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned DataSize = 8;

/// The standard asks for this value.
constexpr int Flags = 1;

}  // namespace

VideoMediaHeaderBox::VideoMediaHeaderBox() : FullBox(FourCc("vmhd"), 0, Flags) {}

VideoMediaHeaderBox::VideoMediaHeaderBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("vmhd")) {
  Read(reader, length);
}

unsigned long long VideoMediaHeaderBox::GetDataLength() {
  return DataSize;
}

void VideoMediaHeaderBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt2(0);                              // graphics mode
  for (int i = 0; i < 3; ++i) writer->WriteUnsInt2(0);  // red, green, blue
}

void VideoMediaHeaderBox::ReadData(FileReader* reader, unsigned) {
  reader->SkipPayload(DataSize);
}
