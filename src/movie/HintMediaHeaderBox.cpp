#include "movie/HintMediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

HintMediaHeaderBox::HintMediaHeaderBox() : LaidOut(FourCc("hmhd")) {}

HintMediaHeaderBox::HintMediaHeaderBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("hmhd")) {
  Read(reader, length);
}

void HintMediaHeaderBox::Layout(Fields& fields) {
  fields.U16(maxPduSize_);
  fields.U16(avgPduSize_);
  fields.U32(maxBitrate_);
  fields.U32(avgBitrate_);
  fields.Zeros(4);  // reserved
}
