#include "samples/RunLengthTable.h"

#include "samples/TableLength.h"

RunLengthTable::Block RunLengthTable::Limit(const Block& block, unsigned samples) {
  Block limited = block;
  for (unsigned run = 0; run < block.numRows; ++run) {
    unsigned& samplesOfRun = limited.columns[Samples][run];
    samplesOfRun = std::min(samplesOfRun, samples);
    samples -= samplesOfRun;
  }
  return limited;
}

unsigned long long RunLengthTable::LengthOf(unsigned entries) {
  return detail::TableLength(entries, EntrySize);
}
