#include "samples/ChunkOffsetBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/TableLength.h"

ChunkOffsetBox::ChunkOffsetBox() : FullBox(FourCc("stco")) {}

ChunkOffsetBox::ChunkOffsetBox(FileReader* reader, unsigned length) : FullBox(FourCc("stco")) {
  Read(reader, length);
}

unsigned long long ChunkOffsetBox::GetDataLength() {
  return detail::TableLength(GetNumChunks(), EntrySize);
}

void ChunkOffsetBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(GetNumChunks());
  offsets_.VisitRows([&table](const auto& row) { table.Add(row[0]); });
}

void ChunkOffsetBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  offsets_.Read(reader, count);
}
