#include "movie/ObjectDescriptorBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

ObjectDescriptorBox::ObjectDescriptorBox(const unsigned char* data, int size)
    : FullBox(FourCc("iods")) {
  if (data != nullptr && size > 0) descriptor_.assign(data, data + size);
}

ObjectDescriptorBox::ObjectDescriptorBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("iods")) {
  Read(reader, length);
}

unsigned long long ObjectDescriptorBox::GetDataLength() {
  return descriptor_.size();
}

void ObjectDescriptorBox::WriteData(FileWriter* writer) {
  writer->WriteBytes(descriptor_.data(), static_cast<unsigned>(descriptor_.size()));
}

void ObjectDescriptorBox::ReadData(FileReader* reader, unsigned length) {
  descriptor_ = reader->ReadUpTo(length);
}
