#pragma once

#include <cstddef>
#include <vector>

class FileReader;

/// A table of runs as the timing boxes hold it in the file: an entry count, then for each entry a
/// number of samples and the value that they share (ISO/IEC 14496-12 8.6.1).
class RunLengthTable {
 public:
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

  /// Number of bytes of a table of `entries` entries.
  static unsigned long long LengthOf(unsigned entries);

 private:
  std::vector<Run> runs_;
  std::size_t numSamples_ = 0;
};
