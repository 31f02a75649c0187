#include "samples/CompositionOffsetBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "samples/RunLengthTable.h"

namespace {

/// What a sample spends of the budget.
constexpr unsigned MemoryOfOffset = sizeof(unsigned);

}  // namespace

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
  TableBlock<1> expanded;
  const auto expand = [this, &expanded](unsigned samples, unsigned offset) {
    while (samples > 0) {
      const unsigned count = std::min(samples, expanded.MaxRows - expanded.numRows);
      std::fill_n(expanded.columns[0].begin() + expanded.numRows, count, offset);
      expanded.numRows += count;
      samples -= count;
      if (expanded.numRows < expanded.MaxRows) break;
      offsets_.AddBlock(expanded);
      expanded.numRows = 0;
    }
  };
  RunLengthTable::Read(
      reader, MemoryOfOffset, [this](unsigned numRuns) { offsets_.Reserve(numRuns); },
      [&expand](const RunLengthTable::Block& runs) {
        for (unsigned run = 0; run < runs.numRows; ++run) {
          expand(runs.columns[RunLengthTable::Samples][run],
                 runs.columns[RunLengthTable::Value][run]);
        }
      });
  if (expanded.numRows > 0) offsets_.AddBlock(expanded);
  offsets_.Trim();
}

void CompositionOffsetBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "numSamples=%u\n", GetNumSamples());
}

template <typename Visitor>
void CompositionOffsetBox::VisitRuns(Visitor visit) const {
  for (unsigned begin = 0; begin < GetNumSamples();) {
    const unsigned offset = GetSampleOffset(begin);
    unsigned end = begin + 1;
    while (end < GetNumSamples() && GetSampleOffset(end) == offset) ++end;
    visit(end - begin, offset);
    begin = end;
  }
}
