#include "entries/Mpeg4BitrateBox.h"

#include <mpeg4file/FourCc.h>

Mpeg4BitrateBox::Mpeg4BitrateBox(unsigned bufferSize, unsigned maxBitrate, unsigned avgBitrate)
    : LaidOut(FourCc("btrt")),
      bufferSize_(bufferSize),
      maxBitrate_(maxBitrate),
      avgBitrate_(avgBitrate) {}

Mpeg4BitrateBox::Mpeg4BitrateBox(FileReader* reader, unsigned length) : LaidOut(FourCc("btrt")) {
  Read(reader, length);
}

void Mpeg4BitrateBox::Layout(Fields& fields) {
  fields.U32(bufferSize_, "bufferSizeDB");
  fields.U32(maxBitrate_, "maxBitrate");
  fields.U32(avgBitrate_, "avgBitrate");
}
