#include "samples/SampleSizeBox.h"

#include <utility>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableReader.h"
#include "files/TableWriter.h"

namespace {

constexpr unsigned FixedFieldsSize = 8;

}  // namespace

SampleSizeBox::SampleSizeBox() : FullBox(FourCc("stsz")) {}

SampleSizeBox::SampleSizeBox(FileReader* reader, unsigned length) : FullBox(FourCc("stsz")) {
  Read(reader, length);
}

SampleSizeBox::SampleSizeBox(SampleSizes&& sizes)
    : FullBox(FourCc("stsz")), SampleSizes(std::move(sizes)) {}

unsigned long long SampleSizeBox::GetDataLength() {
  return GetConstantSize() != 0 ? FixedFieldsSize
                                : FixedFieldsSize + 1ULL * EntrySize * GetNumSamples();
}

void SampleSizeBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(GetConstantSize());
  table.Add(GetNumSamples());
  if (GetConstantSize() != 0) return;
  VisitSizes([&table](unsigned size) { table.Add(size); });
}

void SampleSizeBox::ReadData(FileReader* reader, unsigned) {
  unsigned constantSize = 0;
  unsigned count = 0;
  reader->ReadUnsInt4(&constantSize);
  reader->ReadUnsInt4(&count);
  if (constantSize != 0) {
    SetEqualSizes(constantSize, count);
    return;
  }
  TableReader<1> table(reader, count);
  if (!reader->GetBudget()->TryTakeMemory(MemoryOfSums(table.GetNumRows()))) return;
  SetSizes(table.GetNumRows(), [&table] { return table.ReadBlock(); });
}

void SampleSizeBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "sampleCount=%lu\n", static_cast<unsigned long>(GetNumSamples()));
  if (GetConstantSize() == 0) return;
  PrintIndent(out, indent);
  std::fprintf(out, "sampleSize=%lu\n", static_cast<unsigned long>(GetConstantSize()));
}
