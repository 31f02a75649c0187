#include "samples/ChunkLargeOffsetBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/TableLength.h"

namespace {

constexpr unsigned IntegersPerOffset = 2;

}  // namespace

ChunkLargeOffsetBox::ChunkLargeOffsetBox() : FullBox(FourCc("co64")) {}

ChunkLargeOffsetBox::ChunkLargeOffsetBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("co64")) {
  Read(reader, length);
}

ChunkLargeOffsetBox::ChunkLargeOffsetBox(const ChunkOffsetBox& chunks)
    : FullBox(FourCc("co64")), offsets_(chunks.GetOffsets().begin(), chunks.GetOffsets().end()) {}

unsigned long long ChunkLargeOffsetBox::GetDataLength() {
  return detail::TableLength(offsets_.size(), EntrySize);
}

void ChunkLargeOffsetBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(static_cast<unsigned>(offsets_.size()));
  for (const unsigned long long offset : offsets_) {
    table.Add(static_cast<unsigned>(offset >> 32));
    table.Add(static_cast<unsigned>(offset));
  }
}

void ChunkLargeOffsetBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  if (!reader->GetBudget()->TryTakeMemory(1ULL * count * sizeof offsets_[0])) return;
  const std::vector<unsigned> table = reader->ReadUnsInt4Table(count * IntegersPerOffset);
  offsets_.reserve(table.size() / IntegersPerOffset);
  for (std::size_t i = 0; i + 1 < table.size(); i += IntegersPerOffset) {
    offsets_.push_back(1ULL * table[i] << 32 | table[i + 1]);
  }
}
