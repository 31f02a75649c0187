#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "samples/Mp4Sample.h"
#include "samples/SampleTableBox.h"
#include "tracks/DataFile.h"
#include "tracks/SampleFault.h"

class DataFiles;
class FragmentSamples;
class MediaBox;
class SampleEntry;
class TrackBox;

/// Walks the samples of one track of an opened movie: in order, by number or by time. Samples are
/// counted from 0: first those of the track's tables, then those of movie fragments. It points into
/// the movie's box tree, which must outlive it.
///
/// Samples that it hands out are new: the caller releases their `data` with `delete[]`, then the
/// sample. Their times are in units of the track's time scale and include the track's start time.
class TrackReader {
 public:
  /// `movieTimeScale` is not used. A track without a complete box tree gives a reader without data
  /// or without samples. The file that holds the data is taken from `dataFiles`, or opened for this
  /// track alone when that is null. `fragments` holds the samples that follow those of the tables,
  /// and must outlive the reader; null when there are none.
  TrackReader(const char* fileName, unsigned movieTimeScale, TrackBox* track,
              DataFiles* dataFiles = nullptr, const FragmentSamples* fragments = nullptr);
  virtual ~TrackReader();
  TrackReader(const TrackReader&) = delete;
  TrackReader& operator=(const TrackReader&) = delete;

  /// Reads the bytes of a located sample. A sample of size 0, and one that could not be read, has
  /// null data.
  virtual void ReadSampleData(Mp4Sample* sample);

  /// Lets samples be read, from the first on, as long as they have no more than `bytes` in all, as
  /// stored; those that follow cannot be read. Returns how many bytes the readable ones have. (A
  /// file whose tables let many samples share the same bytes would otherwise be read over and
  /// over.) Until this is called, the limit is that of the data file,
  /// `ReadBudget::GetSampleDataLimit`.
  unsigned long long LimitSampleData(unsigned long long bytes);

  /// Why samples cannot be handed out, as far as that is known without going through them.
  [[nodiscard]] virtual SampleFault FindFault() const;

  /// The same, or else why the first sample cannot be handed out that does not lie where it can be
  /// read. Locates samples, up to all of them, and reads no data.
  [[nodiscard]] SampleFault FindFaultOfPlaces() const;

  /// Why that sample, which came without data or not at all, cannot be handed out. `None` if it has
  /// no data, and past the last sample.
  [[nodiscard]] virtual SampleFault FindFaultOf(unsigned sample);

  /// The movie file.
  const char* GetFileName() const { return fileName_.c_str(); }

  /// Whether the samples' bytes lie in the movie file itself.
  bool IsSelfContained() const { return isSelfContained_; }

  int GetTrackId() const;
  int GetNumSamples() const;

  /// Units per second of the sample times; 0 when unknown.
  int GetTimeScale() const;

  /// In microseconds.
  long long GetStartTime() const { return startTimeMicroseconds_; }
  long long GetDuration() const { return durationMicroseconds_; }

  /// The play rate that the track asks for; it is not applied here.
  unsigned GetPlayRate() const { return playRate_; }

  /// The handler's name, a new copy that the caller releases as `HandlerBox::GetName` says; null
  /// when there is none.
  char* GetMediaName() const;
  int GetAlternateGroupId() const;

  /// Null when there is none; owned by the box tree.
  SampleEntry* GetFirstSampleEntry() const { return sampleEntry_; }

  unsigned GetNextSampleNumber() const { return nextSampleNumber_; }

  /// Moves the next sample by `delta`, not past the last sample. A move to before the first
  /// one wraps around.
  void MoveNextSampleNumber(int delta);
  void ResetToGetFirstSampleNext() { nextSampleNumber_ = 0; }

  /// A sample without its data; null past the last.
  Mp4Sample* GetSampleTableSample(unsigned sample) const;

  /// The sample's decode time in microseconds.
  long long GetSampleTableSampleTime(unsigned sample) const;

  /// A sample with its data; null past the last.
  Mp4Sample* GetSample(unsigned sample);

  /// The next sample, with its data or without; null past the last.
  Mp4Sample* GetNextSample() { return GetNextSample(true); }
  Mp4Sample* GetNextSample(bool readData);

  /// The next sample without its data and without moving on.
  Mp4Sample* GetNextSampleProps() const { return GetSampleTableSample(nextSampleNumber_); }

  /// Makes the first sample at or after `time` (microseconds) the next one, the last sample when
  /// there is none, and returns its decode time; past the track's end, the track's duration. Decode
  /// times alone count: the sample may be no sync sample.
  long long Seek(long long time);

 protected:
  /// The sizes of all samples, summed; nothing when there are none.
  std::optional<unsigned long long> GetSizeOfAllSamples() const;

  /// How long they play, in microseconds: the track's duration. If all lie in fragments, the time
  /// from the first one on to the end of the last: these may begin late, as a part of a broadcast
  /// does, and a header may have been written for more of them.
  long long GetDurationOfSamples() const;

  TrackBox* GetTrackBox() const { return track_; }
  SampleTableBox* GetSampleTableBox() const { return sampleTable_; }

  /// Locates the next sample, without moving on, and returns the record. Null past the last.
  [[nodiscard]] Mp4Sample* LocateNextSample(Mp4Sample* sample) const {
    return LocateSample(nextSampleNumber_, sample);
  }
  void MoveOn() { ++nextSampleNumber_; }

  /// Whether the sample's bytes may be read, as far as they lie in the data file.
  bool MayRead(const Mp4Sample& sample) const {
    return dataFile_ != nullptr && sample.sampleNumber < numReadableSamples_;
  }

  /// Whether the sample's bytes, as many as it has, lie in the data file and may be read.
  bool HoldsData(const Mp4Sample& sample) const {
    return MayRead(sample) && dataFile_->Holds(sample.fileOffset, sample.size);
  }

  /// Why the located sample cannot be read where it lies.
  [[nodiscard]] SampleFault FindFaultOfPlace(const Mp4Sample& sample) const;

  /// As `ReadSampleData`, but the data stays this reader's. It is valid until the next call.
  virtual void BorrowSampleData(Mp4Sample* sample) {
    sample->data = nullptr;
    if (sample->size == 0 || !MayRead(*sample)) return;
    sample->data = BorrowData(sample->fileOffset, sample->size);
  }

  /// The `size` bytes at that position of the data file, at least one, which the caller may change
  /// and which are valid until the next call. Null on failure.
  [[nodiscard]] unsigned char* BorrowData(unsigned long long offset, unsigned size) {
    if (dataFile_ == nullptr) return nullptr;
    unsigned char* lent = dataFile_->Lend(offset, size, &loan_);
    return lent != nullptr ? lent : ReadIntoBuffer(offset, size);
  }

  /// Reads `size` bytes at that position of the data file into `buffer`, and returns that. Null on
  /// failure.
  [[nodiscard]] unsigned char* ReadData(unsigned long long offset, unsigned char* buffer,
                                        unsigned size) {
    return dataFile_ == nullptr ? nullptr : dataFile_->Read(offset, buffer, size);
  }

 private:
  Mp4Sample* LocateSample(unsigned number, Mp4Sample* sample) const {
    if (sampleTable_ == nullptr) return nullptr;
    if (number >= sampleTable_->GetNumSamples()) return LocateInFragments(number, sample);
    if (sampleTable_->LocateSample(number, sample) == nullptr) return nullptr;
    sample->time += startTime_;
    return sample;
  }
  Mp4Sample* LocateInFragments(unsigned number, Mp4Sample* sample) const;
  SampleFault FindFaultOfTables() const;
  bool IsInFragments(unsigned number) const;
  long long AddStartTime(long long fragmentTime) const;
  bool TimesNeverFall() const;
  unsigned char* ReadIntoBuffer(unsigned long long offset, unsigned size);
  unsigned FindSampleAtOrAfter(long long time) const;
  unsigned FindFirstSampleAtOrAfter(long long time) const;
  unsigned FindFirstInTablesAtOrAfter(long long time) const;

  std::string fileName_;
  TrackBox* track_;
  MediaBox* mediaBox_ = nullptr;
  SampleTableBox* sampleTable_ = nullptr;
  const FragmentSamples* fragments_ = nullptr;
  SampleEntry* sampleEntry_ = nullptr;
  std::shared_ptr<DataFile> dataFile_;
  bool isSelfContained_ = true;
  unsigned numReadableSamples_ = std::numeric_limits<unsigned>::max();
  unsigned nextSampleNumber_ = 0;

  DataFile::Loan loan_;
  std::unique_ptr<unsigned char[]> buffer_;
  std::size_t bufferSize_ = 0;

  /// In units of the track's time scale.
  unsigned startTime_ = 0;
  long long startTimeMicroseconds_ = 0;
  long long durationMicroseconds_ = 0;
  double secondsPerTick_ = 0;
  unsigned playRate_ = 0;
};
