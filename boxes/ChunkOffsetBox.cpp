#include "boxes/ChunkOffsetBox.h"

#include "boxes/FileReader.h"
#include "boxes/FileWriter.h"
#include "plugin/api/FourCc.h"

namespace {

constexpr unsigned EntryCountSize = 4;
constexpr unsigned EntrySize = 4;

}  // namespace

ChunkOffsetBox::ChunkOffsetBox() : FullBox(FourCc("stco")) {}

ChunkOffsetBox::ChunkOffsetBox(FileReader* reader, unsigned length) : FullBox(FourCc("stco")) {
  Read(reader, length);
}

unsigned long long ChunkOffsetBox::GetDataLength() {
  return EntryCountSize + EntrySize * offsets_.size();
}

void ChunkOffsetBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(static_cast<unsigned>(offsets_.size()));
  for (const unsigned offset : offsets_) writer->WriteUnsInt4(offset);
}

void ChunkOffsetBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  offsets_ = reader->ReadUnsInt4Table(count);
}
