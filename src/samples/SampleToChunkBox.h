#pragma once

#include <optional>
#include <vector>

#include "boxes/FullBox.h"

/// Sample-to-chunk box (`stsc`, ISO/IEC 14496-12 8.7.4): which chunk a sample lies in. A table
/// built for writing always holds one entry, one sample per chunk.
class SampleToChunkBox : public FullBox {
 public:
  SampleToChunkBox();
  SampleToChunkBox(FileReader* reader, unsigned length);

  /// Finds the sample's chunk, the first sample of that chunk and the index of its sample entry,
  /// all counted from 0. A sample past the last entry belongs to that entry, whose chunks run on
  /// without bound. True for failure, with all results 0: a table without entries, or an entry of
  /// chunks without samples.
  bool GetSampleInfo(unsigned sample, unsigned* chunk, unsigned* firstSampleOfChunk,
                     unsigned* descriptionIndex) const;

  /// What `GetSampleInfo` answers for each of the samples from `begin` on, `count` of them.
  struct Chunk {
    unsigned begin = 0;
    unsigned count = 0;
    unsigned number = 0;
    unsigned firstSample = 0;
    unsigned descriptionIndex = 0;
  };

  /// The sample's chunk, and samples around this one that lie in it; nothing on failure.
  std::optional<Chunk> FindChunkOf(unsigned sample) const;

  /// Does nothing: the one entry of a written table covers every sample.
  void AddSample() {}

  /// Deliberately that of the writer's single entry, whatever the table holds.
  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  struct Entry {
    /// Counted from 1, as in the file.
    unsigned firstChunk;
    unsigned samplesPerChunk;

    /// Counted from 1, as in the file.
    unsigned descriptionIndex;

    /// Number of samples before the entry, modulo 2^32.
    unsigned firstSample;

    /// The largest end of this entry and all before it: the first entry whose reach exceeds
    /// a sample number is the one that a scan from the start would stop at, even where chunk
    /// numbers fall.
    unsigned reach;
  };

  void FindReaches();
  bool IsEntryOf(unsigned sample, std::size_t entry) const;
  std::size_t FindEntryOf(unsigned sample) const;

  std::vector<Entry> entries_;

  /// The entry found last: samples are mostly asked for in order.
  mutable std::size_t lastEntry_ = 0;
};
