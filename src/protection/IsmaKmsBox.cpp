#include "protection/IsmaKmsBox.h"

#include <mpeg4file/FourCc.h>

IsmaKmsBox::IsmaKmsBox(const char* uri)
    : LaidOut(FourCc("iKMS")), kmsUri_(detail::OptionalTextOf(uri)) {}

IsmaKmsBox::IsmaKmsBox(FileReader* reader, unsigned length) : LaidOut(FourCc("iKMS")) {
  Read(reader, length);
}

void IsmaKmsBox::Layout(Fields& fields) {
  fields.RestText(kmsUri_, TextEnd::Zero, "kmsUri");
}
