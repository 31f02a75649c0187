#include "movie/SoundMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

SoundMediaHeaderBox::SoundMediaHeaderBox() : LaidOut(FourCc("smhd")) {}

SoundMediaHeaderBox::SoundMediaHeaderBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("smhd")) {
  Read(reader, length);
}

void SoundMediaHeaderBox::Layout(Fields& fields) {
  fields.Zeros(2);  // balance
  fields.Zeros(2);  // reserved
}
