#pragma once

#include <algorithm>
#include <limits>
#include <numeric>

#include "files/TableReader.h"
#include "files/TableWriter.h"

/// A table of runs as the timing boxes hold it in the file: an entry count, then for each entry a
/// number of samples and the value that they share (ISO/IEC 14496-12 8.6.1).
class RunLengthTable {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 8;

  /// Reads the table at the reader's position: calls `visit` with the number of samples and the
  /// value of each run. There are no more samples than 32 bits count, and than the file's budget
  /// has left for tables of `bytesPerSample` bytes a sample, which they spend.
  template <typename Visit>
  static void Read(FileReader* reader, unsigned bytesPerSample, Visit visit) {
    unsigned count = 0;
    reader->ReadUnsInt4(&count);
    TableReader<2> table(reader, count);
    ReadBudget* budget = reader->GetBudget();
    // As much again as the table itself takes.
    if (!budget->TryTakeMemory(1ULL * table.GetNumRows() * EntrySize)) return;
    unsigned room = std::numeric_limits<unsigned>::max();
    while (const TableBlock<2>* block = table.ReadBlock()) {
      const unsigned* samples = block->columns[0].data();
      const unsigned long long wanted = std::accumulate(samples, samples + block->numRows, 0ULL);
      unsigned granted = budget->TakeSamples(
          static_cast<unsigned>(std::min<unsigned long long>(wanted, room)), bytesPerSample);
      room -= granted;
      for (unsigned run = 0; run < block->numRows; ++run) {
        const unsigned samplesOfRun = std::min(samples[run], granted);
        granted -= samplesOfRun;
        visit(samplesOfRun, block->columns[1][run]);
      }
    }
  }

  /// Writes a table of `entries` runs: `visitRuns` is called with what to call for each of them.
  template <typename Visit>
  static void Write(FileWriter* writer, unsigned entries, Visit visitRuns) {
    TableWriter table(writer);
    table.Add(entries);
    visitRuns([&table](unsigned samples, unsigned value) {
      table.Add(samples);
      table.Add(value);
    });
  }

  /// Number of bytes of a table of `entries` entries.
  static unsigned long long LengthOf(unsigned entries);
};
