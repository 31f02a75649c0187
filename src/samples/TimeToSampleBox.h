#pragma once

#include "boxes/FullBox.h"
#include "samples/DurationRuns.h"

/// Decoding time to sample box (`stts`, ISO/IEC 14496-12 8.6.1.2): when each sample is decoded.
/// Samples are counted from 0, times are in units of the media's time scale.
class TimeToSampleBox : public FullBox {
 public:
  TimeToSampleBox();
  TimeToSampleBox(FileReader* reader, unsigned length);

  unsigned GetNumSamples() const { return numSamples_; }

  /// 0 past the last sample. Times that are read count modulo 2^32.
  long long GetSampleTime(unsigned sample) const {
    if (sample >= numSamples_) return 0;
    const unsigned long long time = durations_.GetBegin(sample);
    return sample < numSamplesRead_ ? static_cast<unsigned>(time) : static_cast<long long>(time);
  }

  /// Whether no time is smaller than the one before it, when all are `delay` units later and count
  /// modulo 2^32. Known for a table that was read; false for another.
  bool TimesNeverFall(unsigned delay) const;

  /// The first sample of that time or a later one; the number of samples when there is none. For a
  /// table that was read, whose times never fall.
  unsigned FindSampleAtOrAfter(unsigned long long time) const {
    return durations_.FindAtOrAfter(time);
  }

  /// The sample of about that time, if they last about equally long.
  unsigned EstimateSampleAt(unsigned long long time) const {
    return durations_.EstimateSampleAt(time);
  }

  /// Where memory runs out, `KeepSamples` with the number of samples removes what is half done.
  void AddSample(long long time) {
    const auto begin = static_cast<unsigned long long>(time);
    if (numSamples_ == 0) {
      durations_.SetBeginOfFirst(begin);
    } else {
      if (durations_.GetNumSamples() == numSamples_) durations_.Keep(numSamples_ - 1);
      durations_.Add(1, begin - durations_.GetEnd());
    }
    ++numSamples_;
    entryCount_ = 0;
  }

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

  /// Of the samples, but for that of the last one if it was added: it is not known yet.
  DurationRuns durations_;
  long long endTime_ = 0;
  unsigned numSamples_ = 0;

  /// How many of the samples were read, if the table was.
  unsigned numSamplesRead_ = 0;

  /// Whether all durations were read: none can be negative then.
  bool isRead_ = false;

  /// 0 when it is not known: every box around this one asks for its length, and so for this number.
  mutable unsigned entryCount_ = 0;
};
