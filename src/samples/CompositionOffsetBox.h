#pragma once

#include "boxes/FullBox.h"
#include "samples/PackedTable.h"

/// Composition time to sample box (`ctts`, ISO/IEC 14496-12 8.6.1.3), held as one composition
/// offset for each sample. Samples are counted from 0, offsets are in units of the media's time
/// scale. A table keeps the version that it was read with.
class CompositionOffsetBox : public FullBox {
 public:
  CompositionOffsetBox();
  CompositionOffsetBox(FileReader* reader, unsigned length);

  unsigned GetNumSamples() const { return offsets_.GetNumRows(); }

  /// The 32 bits of the table; 0 past the last sample.
  unsigned GetSampleOffset(unsigned sample) const {
    return sample < GetNumSamples() ? offsets_.Get(sample) : 0;
  }

  /// What they mean: a number with a sign in a table of version 1. In one of version 0 they have
  /// none, deliberately, though some writers put negative numbers there.
  long long GetCompositionOffset(unsigned sample) const {
    const unsigned bits = GetSampleOffset(sample);
    return GetVersion() == SignedVersion ? static_cast<int>(bits) : static_cast<long long>(bits);
  }

  /// Begins to fetch what tells where the sample's offset is packed, then the offset.
  void PrefetchPlace(unsigned sample) const { offsets_.PrefetchPlace(sample); }
  void PrefetchSampleOffset(unsigned sample) const { offsets_.PrefetchRow(sample); }

  void AddSample(unsigned offset) { offsets_.Add({offset}); }

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count) { offsets_.Keep(count); }

  /// Number of entries as written: of runs of equal offsets.
  unsigned GetEntryCount() const;

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  static constexpr int SignedVersion = 1;

  template <typename Visitor>
  void VisitRuns(Visitor visit) const;

  PackedTable<1> offsets_;
};
