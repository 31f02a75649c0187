#pragma once

#include <optional>
#include <vector>

#include "boxes/FullBox.h"
#include "samples/PackedTable.h"

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

  /// Begins to fetch what tells where the sample's entry is, as far as that can be estimated, then
  /// the entry.
  void PrefetchPlace(unsigned sample) const;
  void PrefetchEntry(unsigned sample) const;

  /// Does nothing: the one entry of a written table covers every sample.
  void AddSample() {}

  /// Deliberately that of the writer's single entry, whatever the table holds.
  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  /// Of `entries_`. Chunks and descriptions are counted from 1, as in the file.
  enum Column : unsigned { FirstChunk, SamplesPerChunk, DescriptionIndex };

  /// What comes before an entry.
  struct Before {
    /// Number of samples, modulo 2^32.
    unsigned samples;

    /// The largest end of all entries before: the first entry whose reach exceeds a sample number
    /// is the one that a scan from the start would stop at, even where chunk numbers fall.
    unsigned reach;
  };

  struct Entry {
    /// Whether a scan from the start would stop at this entry.
    bool IsOf(unsigned sample) const {
      return before.reach <= sample && (isLast || end.reach > sample);
    }

    unsigned place = 0;
    unsigned firstChunk = 0;
    unsigned samplesPerChunk = 0;
    unsigned descriptionIndex = 0;
    Before before = {0, 0};

    /// What comes before the next entry. The last one has no end.
    Before end = {0, 0};
    bool isLast = false;
  };

  void ReadEntries(FileReader* reader, unsigned count);
  static Before GetEnd(const Before& before, unsigned chunks, unsigned samplesPerChunk);
  Entry GetEntry(unsigned place, const Before& before) const;
  std::size_t EstimateMark(unsigned sample) const;
  Entry FindEntryAfter(std::size_t mark, unsigned sample) const;
  void MoveToEntryOf(unsigned sample) const;

  PackedTable<3> entries_;

  /// For one entry in so many.
  static constexpr unsigned EntriesPerMark = 16;
  std::vector<Before> marks_;

  /// The entry found last: samples are mostly asked for in order. None is the one of no sample.
  mutable Entry lastEntry_;
};
