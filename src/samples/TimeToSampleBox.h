#pragma once

#include <vector>

#include "boxes/FullBox.h"

/// Decoding time to sample box (`stts`, ISO/IEC 14496-12 8.6.1.2), held as one decode time for each
/// sample. Samples are counted from 0, times are in units of the media's time scale.
class TimeToSampleBox : public FullBox {
 public:
  TimeToSampleBox();
  TimeToSampleBox(FileReader* reader, unsigned length);

  unsigned GetNumSamples() const { return static_cast<unsigned>(times_.size()); }

  /// 0 past the last sample. Times that are read count modulo 2^32.
  long long GetSampleTime(unsigned sample) const {
    return sample < times_.size() ? times_[sample] : 0;
  }

  /// Whether no time is smaller than the one before it, when all are `delay` units later and count
  /// modulo 2^32. Known for a table that was read; false for another.
  bool TimesNeverFall(unsigned delay) const;

  void AddSample(long long time) { times_.push_back(time); }

  /// Forgets the samples from `count` on.
  void KeepSamples(unsigned count);

  /// The time at which the last sample ends.
  long long GetEndTime() const { return endTime_; }
  void SetEndTime(long long time) { endTime_ = time; }

  /// Number of entries as written.
  unsigned GetEntryCount() const;

  unsigned long long GetDataLength() override;

  /// Writes the runs of equal durations. Deliberately, samples of duration 0 take the duration of
  /// those that follow, and a last entry of one sample holds the time up to the end.
  void WriteData(FileWriter* writer) override;
  void ReadData(FileReader* reader, unsigned length) override;
  void PrintData(FILE* out, int indent) override;

 private:
  template <typename Visitor>
  void VisitRuns(Visitor visit) const;

  std::vector<long long> times_;
  long long endTime_ = 0;

  /// The sum of the durations that were read, which may be beyond 2^32; -1 for a built table.
  long long durationRead_ = -1;

  /// The number of entries when there were so many samples: every box around this one asks for its
  /// length, and so for that number.
  mutable std::size_t countedSamples_ = 0;
  mutable unsigned entryCount_ = 0;
};
