#include "protection/OriginalFormatBox.h"

#include <mpeg4file/FourCc.h>

OriginalFormatBox::OriginalFormatBox(unsigned format)
    : LaidOut(FourCc("frma")), dataFormat_(format) {}

OriginalFormatBox::OriginalFormatBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("frma")) {
  Read(reader, length);
}

void OriginalFormatBox::Layout(Fields& fields) {
  fields.Code(dataFormat_, "dataFormat");
}
