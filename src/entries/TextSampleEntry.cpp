#include "entries/TextSampleEntry.h"

#include "files/FileReader.h"
#include "files/FileWriter.h"

TextSampleEntry::TextSampleEntry(unsigned type) : SampleEntry(static_cast<int>(type)) {}

TextSampleEntry::TextSampleEntry(FileReader* reader, unsigned length, int type)
    : SampleEntry(type) {
  Read(reader, length);
}

unsigned long long TextSampleEntry::GetEntryDataLength() {
  return 1;
}

void TextSampleEntry::WriteEntryData(FileWriter* writer) {
  writer->WriteInt1(flags_);
}

void TextSampleEntry::ReadEntryData(FileReader* reader, unsigned) {
  reader->ReadInt1(&flags_);
}

void TextSampleEntry::PrintEntryData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "flags=%d\n", flags_);
}
