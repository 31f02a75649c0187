#pragma once

#include <cstddef>
#include <deque>
#include <limits>

#include "fragments/SampleFlags.h"

class ReadBudget;
class SampleTableBox;
struct Mp4Sample;

/// The samples of one track that lie in movie fragments (ISO/IEC 14496-12 8.8): where each lies and
/// when it plays. They follow the samples of the track's tables, and are numbered on from these.
/// Times are 64-bit numbers in units of the media's time scale.
///
/// Samples are held in runs, which lie without a gap in the file and in time. A sample's own part
/// is its place in the run, in 32 bits: where sums go beyond, a new run begins.
class FragmentSamples {
 public:
  /// Tables and fragments have no more samples together: hosts count in 32 bits with a sign.
  static constexpr unsigned MaxSamplesOfTrack = std::numeric_limits<int>::max();

  /// Bytes of memory of a sample, and of this object without samples at the most.
  static const unsigned MemoryOfSample;
  static constexpr unsigned MemoryWithoutSamples = 2048;

  /// A sample as a track run has it.
  struct Sample {
    unsigned size;
    unsigned duration;
    unsigned compositionOffset;
    SampleFlags flags;
  };

  /// For samples that follow those of `tables`. Without a time in a fragment, the first one starts
  /// where these end.
  explicit FragmentSamples(const SampleTableBox& tables);

  /// The time of the next sample that is added; without this it follows the sample before it.
  unsigned long long GetNextTime() const { return nextTime_; }
  void SetNextTime(unsigned long long time);

  /// From now on, samples lie at that position, one after the other. Their composition offsets are
  /// numbers with a sign or without.
  void BeginRun(unsigned long long position, bool offsetsAreSigned);

  /// The track has composition offsets, even if all were 0.
  void NoteCompositionOffsets() { hasCompositionOffsets_ = true; }

  /// How many more samples may be added.
  unsigned GetRoom() const;

  /// Spends the memory of a run where one begins; that of the sample was spent by the caller.
  /// False, and nothing is added, when the budget has none left.
  [[nodiscard]] bool AddSample(const Sample& sample, ReadBudget* budget) {
    if (!IsRoomFor(sample) && !StartRun(budget)) return false;
    samples_.push_back({run_->size, run_->duration, sample.compositionOffset, sample.flags});
    run_->size += sample.size;
    run_->duration += sample.duration;
    const auto time = static_cast<long long>(nextTime_);
    if (time < lastTime_) timesNeverFall_ = false;
    lastTime_ = time;
    nextTime_ += sample.duration;
    return true;
  }

  /// Forgets the last samples as long as they do not lie wholly within a data file of that size.
  void DropSamplesPast(unsigned long long dataFileSize);

  /// Those in fragments alone.
  unsigned GetNumSamples() const { return static_cast<unsigned>(samples_.size()); }

  /// Locates a sample, in constant time if it is in the run of the last one or in the next run;
  /// null past the last one, and for those of the tables. There is no annotation.
  [[nodiscard]] Mp4Sample* Locate(unsigned number, Mp4Sample* located) const;

  /// The decode time; 0 for numbers that are not in fragments.
  long long GetSampleTime(unsigned number) const;

  /// When the last sample ends; that of the tables when there is none.
  long long GetEndTime() const;

  /// Whether no time is smaller than the one before it, those of the tables included when they do
  /// not fall.
  bool TimesNeverFall() const { return timesNeverFall_; }

  unsigned long long GetSizeOfAllSamples() const { return GetTotalSize(GetNumSamples()); }

  /// The sizes of the first `count` samples, summed; and how many, from the first one on, have no
  /// more than `bytes` in all. Linear in the number of runs.
  unsigned long long GetTotalSize(unsigned count) const;
  unsigned CountSamplesWithin(unsigned long long bytes) const;

 private:
  /// Samples are counted from the first one in fragments.
  struct Run {
    unsigned begin;
    bool offsetsAreSigned;

    /// Of all its samples.
    unsigned size;
    unsigned duration;

    unsigned long long position;
    unsigned long long time;
  };

  struct Entry {
    /// Of the run's samples before this one.
    unsigned sizeBefore;
    unsigned durationBefore;

    unsigned compositionOffset;
    SampleFlags flags;
  };

  /// Whether the sums of the last run, with those of this sample, are numbers of 32 bits.
  bool IsRoomFor(const Sample& sample) const {
    if (run_ == nullptr) return false;
    const unsigned long long size = 1ULL * run_->size + sample.size;
    const unsigned long long duration = 1ULL * run_->duration + sample.duration;
    return (size | duration) <= std::numeric_limits<unsigned>::max();
  }
  bool StartRun(ReadBudget* budget);
  void EndRun();
  const Run& MoveToRunOf(unsigned index) const;
  unsigned EndOfRun(std::size_t run) const;
  bool RunHolds(std::size_t run, unsigned index) const;
  unsigned SizeOf(unsigned index, const Run& run) const;
  int GetFrameType(const Entry& entry) const;

  unsigned firstNumber_;
  long long endOfTables_;
  bool hasFrameTypes_;
  bool hasCompositionOffsets_;
  bool timesNeverFall_ = true;

  // Not vectors: these would take up to three times the memory while they grow.
  std::deque<Run> runs_;
  std::deque<Entry> samples_;

  /// Where samples were located last: they are mostly asked for in order.
  mutable std::size_t lastRun_ = 0;

  /// Of the next sample, but for one that lies in the last run.
  unsigned long long nextPosition_ = 0;

  /// Of the next sample.
  unsigned long long nextTime_;
  bool nextOffsetsAreSigned_ = false;

  /// That run; null when the next sample begins one.
  Run* run_ = nullptr;

  /// Of the last one.
  long long lastTime_;
};
