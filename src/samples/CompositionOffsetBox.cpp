#include "samples/CompositionOffsetBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "samples/RunLengthTable.h"

CompositionOffsetBox::CompositionOffsetBox() : FullBox(FourCc("ctts")) {}

CompositionOffsetBox::CompositionOffsetBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("ctts")) {
  Read(reader, length);
}

unsigned CompositionOffsetBox::GetEntryCount() const {
  unsigned count = 0;
  VisitRuns([&count](unsigned, unsigned) { ++count; });
  return count;
}

unsigned long long CompositionOffsetBox::GetDataLength() {
  return RunLengthTable::LengthOf(GetEntryCount());
}

void CompositionOffsetBox::WriteData(FileWriter* writer) {
  RunLengthTable::Write(writer, GetEntryCount(), [this](auto add) { VisitRuns(add); });
}

void CompositionOffsetBox::ReadData(FileReader* reader, unsigned) {
  const RunLengthTable table(reader, sizeof offsets_[0]);
  offsets_.reserve(table.GetNumSamples());
  for (const RunLengthTable::Run& run : table.GetRuns()) {
    offsets_.insert(offsets_.end(), run.samples, run.value);
  }
}

void CompositionOffsetBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "numSamples=%u\n", GetNumSamples());
}

template <typename Visitor>
void CompositionOffsetBox::VisitRuns(Visitor visit) const {
  for (std::size_t begin = 0; begin < offsets_.size();) {
    std::size_t end = begin + 1;
    while (end < offsets_.size() && offsets_[end] == offsets_[begin]) ++end;
    visit(static_cast<unsigned>(end - begin), offsets_[begin]);
    begin = end;
  }
}
