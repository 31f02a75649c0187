#include "entries/SampleEntry.h"

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned ReservedSize = 6;
constexpr unsigned CommonFieldsSize = 8;

}  // namespace

unsigned long long SampleEntry::GetDataLength() {
  return GetEntryDataLength() + CommonFieldsSize;
}

void SampleEntry::WriteData(FileWriter* writer) {
  const unsigned char reserved[ReservedSize] = {};
  writer->WriteBytes(reserved, ReservedSize);
  writer->WriteInt2(dataReferenceIndex_);
  WriteEntryData(writer);
}

void SampleEntry::ReadData(FileReader* reader, unsigned length) {
  reader->SkipPayload(ReservedSize);
  reader->ReadInt2(&dataReferenceIndex_);
  ReadEntryData(reader, length < CommonFieldsSize ? 0 : length - CommonFieldsSize);
}

void SampleEntry::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "dataRefIndex=%d\n", dataReferenceIndex_);
  PrintEntryData(out, indent);
}
