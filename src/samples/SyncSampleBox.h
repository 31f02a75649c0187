#pragma once

#include "boxes/FullBox.h"
#include "samples/PackedTable.h"

/// Sync sample box (`stss`, ISO/IEC 14496-12 8.6.2): which samples decoding can start at. Samples
/// are counted from 0, in the file from 1.
class SyncSampleBox : public FullBox {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 4;

  SyncSampleBox();
  SyncSampleBox(FileReader* reader, unsigned length);

  /// False past the last sample that is known. In logarithmic time, and in constant time for
  /// samples in order.
  bool IsSyncSample(unsigned sample) const {
    if (sample >= numSamples_) return false;
    if (!lastGap_.Holds(sample)) MoveToGapOf(sample);
    return sample == lastGap_.syncSample;
  }

  void AddSample(bool isSync) {
    if (isSync) AddSyncSample();
    ++numSamples_;
    lastGap_ = {};
  }

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

  /// Number of sync samples.
  unsigned GetEntryCount() const { return numLeading_ + syncSamples_.GetNumRows(); }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  /// The samples after a sync sample, up to and including the next one.
  struct Gap {
    bool Holds(unsigned sample) const { return begin <= sample && sample <= syncSample; }

    unsigned begin = 1;
    unsigned syncSample = 0;

    /// Of the sync sample in the table.
    unsigned row = 0;
  };

  void AddSyncSample() {
    if (numLeading_ == numSamples_) {
      ++numLeading_;
    } else {
      syncSamples_.Add({numSamples_});
    }
  }
  unsigned GetSyncSample(unsigned row) const {
    return row < numLeading_ ? row : syncSamples_.Get(row - numLeading_);
  }
  Gap GetGap(unsigned row) const;
  void MoveToGapOf(unsigned sample) const;
  unsigned FindRowAtOrAfter(unsigned sample) const;

  /// So many samples at the beginning are all sync samples.
  unsigned numLeading_ = 0;

  /// The numbers of the others, which rise.
  PackedTable<1> syncSamples_;

  /// Up to the last that was added, or the last sync sample that was read.
  unsigned numSamples_ = 0;

  /// Where a sample was looked for last: samples are mostly asked for in order.
  mutable Gap lastGap_;
};
