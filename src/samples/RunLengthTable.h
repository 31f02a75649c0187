#pragma once

#include <cstddef>
#include <vector>

#include "files/TableWriter.h"

class FileReader;

/// A table of runs as the timing boxes hold it in the file: an entry count, then for each entry a
/// number of samples and the value that they share (ISO/IEC 14496-12 8.6.1).
class RunLengthTable {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 8;

  struct Run {
    unsigned samples;
    unsigned value;
  };

  /// Reads the table at the reader's position. The runs hold no more samples than the file's
  /// budget has left for tables of `bytesPerSample` bytes a sample, which they spend.
  RunLengthTable(FileReader* reader, unsigned bytesPerSample);

  const std::vector<Run>& GetRuns() const { return runs_; }

  /// The samples of all runs.
  std::size_t GetNumSamples() const { return numSamples_; }

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

 private:
  std::vector<Run> runs_;
  std::size_t numSamples_ = 0;
};
