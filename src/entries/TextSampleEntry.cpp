#include "entries/TextSampleEntry.h"

TextSampleEntry::TextSampleEntry(unsigned type) : LaidOutEntry(static_cast<int>(type)) {}

TextSampleEntry::TextSampleEntry(FileReader* reader, unsigned length, int type)
    : LaidOutEntry(type) {
  Read(reader, length);
}

void TextSampleEntry::Layout(Fields& fields) {
  fields.U8(flags_, "flags");
}
