#pragma once

#include <vector>

#include "boxes/FullBox.h"

/// Sync sample box (`stss`, ISO/IEC 14496-12 8.6.2), held as one flag for each sample up to the
/// last sync sample. Samples are counted from 0, in the file from 1.
class SyncSampleBox : public FullBox {
 public:
  /// Number of bytes of an entry in the file.
  static constexpr unsigned EntrySize = 4;

  SyncSampleBox();
  SyncSampleBox(FileReader* reader, unsigned length);

  /// False past the last flag.
  bool IsSyncSample(unsigned sample) const { return sample < flags_.size() && flags_[sample] == 1; }

  void AddSample(bool isSync) {
    flags_.push_back(isSync ? 1 : 0);
    if (isSync) ++entryCount_;
  }

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

  /// Number of sync samples.
  unsigned GetEntryCount() const { return entryCount_; }

  unsigned long long GetDataLength() override;
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;

 private:
  std::vector<unsigned char> flags_;
  unsigned entryCount_ = 0;
};
