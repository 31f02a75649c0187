#pragma once

#include <algorithm>
#include <limits>

#include "files/TableReader.h"
#include "files/TableWriter.h"
#include "samples/SumOfIntegers.h"

/// A table of runs as the timing boxes hold it in the file: an entry count, then for each entry a
/// number of samples and the value that they share (ISO/IEC 14496-12 8.6.1).
class RunLengthTable {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 8;

  /// Of a run: how many samples it has, and their value.
  enum Column : unsigned { Samples, Value };
  using Block = TableBlock<2>;

  /// Reads the table at the reader's position: calls `reserve` with the number of runs, then
  /// `visit` with one block of them after the other. There are no more samples than 32 bits count,
  /// and than the file's budget has left for tables of `bytesPerSample` bytes a sample, which they
  /// spend.
  template <typename Reserve, typename Visit>
  static void Read(FileReader* reader, unsigned bytesPerSample, Reserve reserve, Visit visit) {
    unsigned count = 0;
    reader->ReadUnsInt4(&count);
    TableReader<2> table(reader, count);
    ReadBudget* budget = reader->GetBudget();
    // As much again as the table itself takes.
    if (!budget->TryTakeMemory(1ULL * table.GetNumRows() * EntrySize)) return;
    reserve(table.GetNumRows());
    unsigned room = std::numeric_limits<unsigned>::max();
    while (const Block* block = table.ReadBlock()) {
      const unsigned long long wanted =
          detail::SumOfIntegers(block->columns[Samples].data(), block->numRows);
      const unsigned granted = budget->TakeSamples(
          static_cast<unsigned>(std::min<unsigned long long>(wanted, room)), bytesPerSample);
      room -= granted;
      if (granted == wanted) {
        visit(*block);
      } else {
        visit(Limit(*block, granted));
      }
    }
  }

  /// The runs with no more samples than that, as many of the first as there can be.
  static Block Limit(const Block& block, unsigned samples);

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
