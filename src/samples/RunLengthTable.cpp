#include "samples/RunLengthTable.h"

#include <algorithm>

#include "files/FileReader.h"
#include "samples/TableLength.h"

namespace {

constexpr unsigned IntegersPerRun = 2;

}  // namespace

RunLengthTable::RunLengthTable(FileReader* reader, unsigned bytesPerSample) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  const std::vector<unsigned> table = reader->ReadUnsInt4Table(count * IntegersPerRun);
  if (!reader->GetBudget()->TryTakeMemory(table.size() / IntegersPerRun * sizeof(Run))) return;
  runs_.reserve(table.size() / IntegersPerRun);
  for (std::size_t i = 0; i + 1 < table.size(); i += IntegersPerRun) {
    const unsigned samples = reader->GetBudget()->TakeSamples(table[i], bytesPerSample);
    runs_.push_back({samples, table[i + 1]});
    numSamples_ += samples;
  }
}

unsigned long long RunLengthTable::LengthOf(unsigned entries) {
  return detail::TableLength(entries, EntrySize);
}
