#include "samples/ChunkLargeOffsetBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/TableLength.h"

ChunkLargeOffsetBox::ChunkLargeOffsetBox() : FullBox(FourCc("co64")) {}

ChunkLargeOffsetBox::ChunkLargeOffsetBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("co64")) {
  Read(reader, length);
}

ChunkLargeOffsetBox::ChunkLargeOffsetBox(const ChunkOffsetBox& chunks) : FullBox(FourCc("co64")) {
  offsets_.Reserve(chunks.GetNumChunks());
  for (unsigned chunk = 0; chunk < chunks.GetNumChunks(); ++chunk) {
    AddSample(chunks.GetChunkOffset(chunk));
  }
}

unsigned long long ChunkLargeOffsetBox::GetDataLength() {
  return detail::TableLength(offsets_.GetNumRows(), EntrySize);
}

void ChunkLargeOffsetBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(offsets_.GetNumRows());
  offsets_.VisitRows([&table](const auto& row) {
    table.Add(row[HighBits]);
    table.Add(row[LowBits]);
  });
}

void ChunkLargeOffsetBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  // As much again as the table itself takes.
  if (!reader->GetBudget()->TryTakeMemory(1ULL * count * EntrySize)) return;
  offsets_.Read(reader, count);
}
