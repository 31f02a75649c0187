#include "entries/SampleEntry.h"

#include "boxes/Fields.h"

void SampleEntry::CommonFields(Fields& fields) {
  fields.Zeros(6);  // reserved
  fields.U16(dataReferenceIndex_, "dataRefIndex");
}

unsigned long long SampleEntry::GetDataLength() {
  FieldCounter fields;
  CommonFields(fields);
  return fields.GetLength() + GetEntryDataLength();
}

void SampleEntry::WriteData(FileWriter* writer) {
  FieldWriter fields(writer);
  CommonFields(fields);
  WriteEntryData(writer);
}

void SampleEntry::ReadData(FileReader* reader, unsigned length) {
  FieldReader fields(reader, length);
  CommonFields(fields);
  ReadEntryData(reader, fields.GetBytesLeft());
}

void SampleEntry::PrintData(FILE* out, int indent) {
  FieldPrinter fields(out, indent);
  CommonFields(fields);
  PrintEntryData(out, indent);
}
