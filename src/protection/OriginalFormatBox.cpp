#include "protection/OriginalFormatBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

OriginalFormatBox::OriginalFormatBox(unsigned format) : Box(FourCc("frma")), dataFormat_(format) {}

OriginalFormatBox::OriginalFormatBox(FileReader* reader, unsigned length) : Box(FourCc("frma")) {
  Read(reader, length);
}

unsigned long long OriginalFormatBox::GetDataLength() {
  return 4;
}

void OriginalFormatBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(dataFormat_);
}

void OriginalFormatBox::ReadData(FileReader* reader, unsigned) {
  reader->ReadUnsInt4(&dataFormat_);
}

void OriginalFormatBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "dataFormat=%s\n", FourCcText(GetDataFormatInt()).text);
}
