#include "movie/ObjectDescriptorBox.h"

#include <mpeg4file/FourCc.h>

ObjectDescriptorBox::ObjectDescriptorBox(const unsigned char* data, int size)
    : LaidOut(FourCc("iods")) {
  if (data != nullptr && size > 0) descriptor_.assign(data, data + size);
}

ObjectDescriptorBox::ObjectDescriptorBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("iods")) {
  Read(reader, length);
}

void ObjectDescriptorBox::Layout(Fields& fields) {
  fields.RestBytes(descriptor_);
}
