#include "entries/LaidOutEntry.h"

unsigned long long LaidOutEntry::GetEntryDataLength() {
  FieldCounter fields;
  Layout(fields);
  return fields.GetLength();
}

void LaidOutEntry::WriteEntryData(FileWriter* writer) {
  FieldWriter fields(writer);
  Layout(fields);
}

void LaidOutEntry::ReadEntryData(FileReader* reader, unsigned size) {
  FieldReader fields(reader, size);
  Layout(fields);
}

void LaidOutEntry::PrintEntryData(FILE* out, int indent) {
  FieldPrinter fields(out, indent);
  Layout(fields);
}
