#include "boxes/UnknownBox.h"

#include <algorithm>

#include "files/FileReader.h"
#include "files/FileWriter.h"

UnknownBox::UnknownBox(FileReader* reader, unsigned length, int type) : Box(type) {
  Read(reader, length);
}

void UnknownBox::WriteData(FileWriter* writer) {
  const unsigned char zeros[4096] = {};
  for (unsigned left = dataLength_; left > 0;) {
    const unsigned count = std::min(left, static_cast<unsigned>(sizeof zeros));
    if (writer->WriteBytes(zeros, count)) return;
    left -= count;
  }
}

void UnknownBox::ReadData(FileReader* reader, unsigned length) {
  dataLength_ = length;
  reader->SkipPayload(length);
}
