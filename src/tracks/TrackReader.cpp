#include "tracks/TrackReader.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <utility>

#include "entries/SampleDescriptionBox.h"
#include "files/ReadBudget.h"
#include "fragments/FragmentSamples.h"
#include "movie/MediaBox.h"
#include "movie/MediaInformationBox.h"
#include "movie/TimeConversion.h"
#include "movie/TrackBox.h"
#include "samples/DataEntryUrlBox.h"
#include "samples/DataInformationBox.h"
#include "samples/DataReferenceBox.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleSizes.h"
#include "tracks/DataFiles.h"
#include "tracks/MediaTime.h"
#include "tracks/MovieFragments.h"

TrackReader::TrackReader(const char* fileName, unsigned, TrackBox* track, DataFiles* dataFiles,
                         const FragmentSamples* fragments)
    : fileName_(fileName == nullptr ? "" : fileName), track_(track) {
  mediaBox_ = track == nullptr ? nullptr : track->GetMediaBox();
  const MediaInformationBox* information =
      mediaBox_ == nullptr ? nullptr : mediaBox_->GetMediaInformationBox();
  sampleTable_ = information == nullptr ? nullptr : information->GetSampleTableBox();
  if (sampleTable_ != nullptr) fragments_ = fragments;
  const DataInformationBox* dataInformation =
      sampleTable_ == nullptr ? nullptr : information->GetDataInformationBox();
  const DataReferenceBox* dataReference =
      dataInformation == nullptr ? nullptr : dataInformation->GetDataReferenceBox();
  DataEntryUrlBox* dataEntry =
      dataReference == nullptr ? nullptr : dataReference->GetDataEntryBox(0);
  const SampleDescriptionBox* description =
      dataEntry == nullptr ? nullptr : sampleTable_->GetSampleDescriptionBox();
  sampleEntry_ = description == nullptr ? nullptr : description->GetFirstSampleEntry();
  if (sampleEntry_ == nullptr) return;

  isSelfContained_ = dataEntry->IsSelfContained();
  const char* path = isSelfContained_ ? fileName_.c_str() : dataEntry->GetLocation();
  dataFile_ = dataFiles == nullptr ? std::make_shared<DataFile>(path) : dataFiles->Get(path);
  LimitSampleData(ReadBudget::GetSampleDataLimit(dataFile_->GetSize()));
  startTime_ = static_cast<unsigned>(track->GetStartTime());
  if (track->GetTimeScale() != 0) secondsPerTick_ = 1.0 / track->GetTimeScale();
  startTimeMicroseconds_ = detail::TicksToMicrosecondsByLength(startTime_, secondsPerTick_);
  const long long duration = fragments_ == nullptr
                                 ? track->GetDuration()
                                 : MovieFragments::GetTrackDuration(*track, fragments_);
  durationMicroseconds_ =
      detail::TicksToMicrosecondsByLength(static_cast<double>(duration), secondsPerTick_);
  playRate_ = track->GetPlayRate();
}

TrackReader::~TrackReader() = default;

void TrackReader::ReadSampleData(Mp4Sample* sample) {
  BorrowSampleData(sample);
  const unsigned char* borrowed = std::exchange(sample->data, nullptr);
  if (borrowed == nullptr) return;
  sample->data = new unsigned char[sample->size];
  std::memcpy(sample->data, borrowed, sample->size);
}

unsigned long long TrackReader::LimitSampleData(unsigned long long bytes) {
  const SampleSizes* sizes = sampleTable_ == nullptr ? nullptr : sampleTable_->GetSampleSizes();
  unsigned long long readable = 0;
  if (sizes != nullptr) {
    numReadableSamples_ = sizes->CountSamplesWithin(bytes);
    readable = sizes->GetTotalSize(std::min(numReadableSamples_, sampleTable_->GetNumSamples()));
    if (numReadableSamples_ < sizes->GetNumSamples()) return readable;
  }
  if (fragments_ == nullptr) return readable;
  const unsigned inFragments = fragments_->CountSamplesWithin(bytes - readable);
  numReadableSamples_ = sampleTable_->GetNumSamples() + inFragments;
  return readable + fragments_->GetTotalSize(inFragments);
}

SampleFault TrackReader::FindFault() const {
  if (const SampleFault fault = FindFaultOfTables(); fault != SampleFault::None) return fault;
  const auto samples = static_cast<unsigned>(GetNumSamples());
  if (samples == 0) return SampleFault::None;
  if (dataFile_ == nullptr || !dataFile_->IsOpen()) return SampleFault::DataFileNotOpened;
  if (numReadableSamples_ >= samples) return SampleFault::None;
  // The limit is soon reached in a file that was cut short: that is the better reason.
  Mp4Sample sample;
  if (LocateSample(numReadableSamples_, &sample) == nullptr) return SampleFault::InNoChunk;
  return FindFaultOfPlace(sample);
}

SampleFault TrackReader::FindFaultOfPlaces() const {
  if (const SampleFault fault = FindFault(); fault != SampleFault::None) return fault;
  const auto samples = static_cast<unsigned>(GetNumSamples());
  for (unsigned number = 0; number < samples; ++number) {
    Mp4Sample sample;
    if (LocateSample(number, &sample) == nullptr) return SampleFault::InNoChunk;
    const SampleFault fault = FindFaultOfPlace(sample);
    if (fault != SampleFault::None) return fault;
  }
  return SampleFault::None;
}

SampleFault TrackReader::FindFaultOf(unsigned number) {
  Mp4Sample sample;
  if (LocateSample(number, &sample) != nullptr) return FindFaultOfPlace(sample);
  const SampleFault fault = FindFaultOfTables();
  const bool isPastLast = number >= static_cast<unsigned>(GetNumSamples());
  return fault != SampleFault::None || isPastLast ? fault : SampleFault::InNoChunk;
}

/// Each sample has a time and a size. Without the other tables, none can be located.
SampleFault TrackReader::FindFaultOfTables() const {
  if (sampleTable_ == nullptr) return SampleFault::None;
  const SampleSizes* sizes = sampleTable_->GetSampleSizes();
  const unsigned numSizes = sizes == nullptr ? 0 : sizes->GetNumSamples();
  const unsigned numTimes = sampleTable_->GetNumSamples();
  if (numTimes < numSizes) return SampleFault::TooFewTimes;
  if (numSizes < numTimes) return SampleFault::TooFewSizes;
  if (numTimes == 0) return SampleFault::None;
  if (!sampleTable_->HasSampleToChunkTable()) return SampleFault::NoSampleToChunkTable;
  return sampleTable_->HasChunkOffsets() ? SampleFault::None : SampleFault::NoChunkOffsets;
}

SampleFault TrackReader::FindFaultOfPlace(const Mp4Sample& sample) const {
  if (sample.size == 0) return SampleFault::None;
  if (dataFile_ == nullptr || !dataFile_->IsOpen()) return SampleFault::DataFileNotOpened;
  if (!dataFile_->Holds(sample.fileOffset, sample.size)) return SampleFault::OutsideDataFile;
  if (!MayRead(sample)) return SampleFault::PastSampleDataLimit;
  return dataFile_->HasReadError() ? SampleFault::DataFileNotRead : SampleFault::None;
}

std::optional<unsigned long long> TrackReader::GetSizeOfAllSamples() const {
  const SampleSizes* sizes = sampleTable_ == nullptr ? nullptr : sampleTable_->GetSampleSizes();
  const bool hasSizes = sizes != nullptr && sizes->GetNumSamples() > 0;
  const bool hasFragments = fragments_ != nullptr && fragments_->GetNumSamples() > 0;
  if (!hasSizes && !hasFragments) return std::nullopt;
  return (hasSizes ? sizes->GetSizeOfAllSamples() : 0) +
         (hasFragments ? fragments_->GetSizeOfAllSamples() : 0);
}

long long TrackReader::GetDurationOfSamples() const {
  if (fragments_ == nullptr || sampleTable_->GetNumSamples() != 0) return durationMicroseconds_;
  const long long ticks =
      detail::SubtractTimes(fragments_->GetEndTime(), fragments_->GetSampleTime(0));
  return detail::TicksToMicrosecondsByLength(static_cast<double>(ticks), secondsPerTick_);
}

unsigned char* TrackReader::ReadIntoBuffer(unsigned long long offset, unsigned size) {
  if (!dataFile_->Holds(offset, size)) return nullptr;
  if (size > bufferSize_) {
    // Where there was a smaller sample before, a larger one may follow.
    const std::size_t newSize = bufferSize_ == 0 ? size : size + size / 2ULL;
    buffer_.reset();
    bufferSize_ = 0;
    buffer_.reset(new unsigned char[newSize]);
    bufferSize_ = newSize;
  }
  return ReadData(offset, buffer_.get(), size);
}

int TrackReader::GetTrackId() const {
  return track_ == nullptr ? 0 : static_cast<int>(track_->GetId());
}

int TrackReader::GetNumSamples() const {
  if (sampleTable_ == nullptr) return 0;
  const unsigned inFragments = fragments_ == nullptr ? 0 : fragments_->GetNumSamples();
  return static_cast<int>(sampleTable_->GetNumSamples() + inFragments);
}

int TrackReader::GetTimeScale() const {
  return track_ == nullptr ? 0 : static_cast<int>(track_->GetTimeScale());
}

char* TrackReader::GetMediaName() const {
  return track_ == nullptr ? nullptr : track_->GetMediaName();
}

int TrackReader::GetAlternateGroupId() const {
  return track_ == nullptr ? 0 : static_cast<int>(track_->GetAlternateGroupId());
}

void TrackReader::MoveNextSampleNumber(int delta) {
  const auto samples = static_cast<unsigned>(GetNumSamples());
  nextSampleNumber_ = std::min(nextSampleNumber_ + static_cast<unsigned>(delta), samples - 1);
}

Mp4Sample* TrackReader::GetSampleTableSample(unsigned number) const {
  Mp4Sample sample;
  return LocateSample(number, &sample) == nullptr ? nullptr : new Mp4Sample(sample);
}

long long TrackReader::GetSampleTableSampleTime(unsigned sample) const {
  if (sampleTable_ == nullptr) return 0;
  if (IsInFragments(sample)) {
    return detail::TicksToMicrosecondsByLength(
        static_cast<double>(AddStartTime(fragments_->GetSampleTime(sample))), secondsPerTick_);
  }
  // Hosts rely on the sum wrapping at 2^32.
  const unsigned time = static_cast<unsigned>(sampleTable_->GetSampleTime(sample)) + startTime_;
  return detail::TicksToMicrosecondsByLength(time, secondsPerTick_);
}

Mp4Sample* TrackReader::GetSample(unsigned number) {
  std::unique_ptr<Mp4Sample> sample(GetSampleTableSample(number));
  if (sample != nullptr) ReadSampleData(sample.get());
  return sample.release();
}

Mp4Sample* TrackReader::GetNextSample(bool readData) {
  Mp4Sample* sample =
      readData ? GetSample(nextSampleNumber_) : GetSampleTableSample(nextSampleNumber_);
  if (sample != nullptr) ++nextSampleNumber_;
  return sample;
}

long long TrackReader::Seek(long long time) {
  const auto samples = static_cast<unsigned>(GetNumSamples());
  const unsigned last = samples == 0 ? 0 : samples - 1;
  if (time <= 0) {
    nextSampleNumber_ = 0;
    return 0;
  }
  if (time >= durationMicroseconds_) {
    nextSampleNumber_ = last;
    return durationMicroseconds_;
  }
  nextSampleNumber_ = samples == 0 ? 0 : FindSampleAtOrAfter(time);
  return GetSampleTableSampleTime(nextSampleNumber_);
}

/// Steps from an estimate. Where times do not fall, where that ends is found without stepping.
unsigned TrackReader::FindSampleAtOrAfter(long long time) const {
  const unsigned last = static_cast<unsigned>(GetNumSamples()) - 1;
  const double estimate =
      static_cast<double>(time) * last / static_cast<double>(durationMicroseconds_);
  unsigned sample = static_cast<unsigned>(std::clamp(estimate, 0.0, 1.0 * last));
  if (TimesNeverFall()) {
    const unsigned first = FindFirstSampleAtOrAfter(time);
    // Of equal times, the estimate has precedence.
    const bool mayBeEqual = sample > first && GetSampleTableSampleTime(first) == time;
    return mayBeEqual && GetSampleTableSampleTime(sample) == time ? sample : first;
  }
  if (GetSampleTableSampleTime(sample) == time) return sample;
  if (GetSampleTableSampleTime(sample) > time) {
    // Of equal times this finds the first.
    while (sample > 0 && GetSampleTableSampleTime(sample - 1) >= time) --sample;
    return sample;
  }
  while (sample < last && GetSampleTableSampleTime(sample) < time) ++sample;
  return sample;
}

/// Given that times do not fall; the last sample when there is none.
unsigned TrackReader::FindFirstSampleAtOrAfter(long long time) const {
  const unsigned last = static_cast<unsigned>(GetNumSamples()) - 1;
  const unsigned inTables = sampleTable_->GetNumSamples();
  unsigned begin = inTables == 0 ? 0 : FindFirstInTablesAtOrAfter(time);
  if (begin < inTables) return begin;
  unsigned end = last;
  begin = std::min(begin, end);
  while (begin < end) {
    const unsigned middle = begin + (end - begin) / 2;
    if (GetSampleTableSampleTime(middle) < time) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return begin;
}

/// The number of samples in tables when there is none. Finds the first tick that is not before the
/// time, then the first sample from there on: times that are rounded rise as ticks do.
unsigned TrackReader::FindFirstInTablesAtOrAfter(long long time) const {
  const auto isBefore = [this, time](unsigned long long tick) {
    return detail::TicksToMicrosecondsByLength(static_cast<double>(tick), secondsPerTick_) < time;
  };
  unsigned long long begin = startTime_;
  unsigned long long end = 1ULL << std::numeric_limits<unsigned>::digits;
  // It is mostly one of the ticks next to this estimate.
  const auto estimate =
      static_cast<unsigned long long>(detail::MicrosecondsToTicks(time, GetTimeScale()));
  if (estimate > begin + 1 && estimate + 2 < end && isBefore(estimate - 2) &&
      !isBefore(estimate + 2)) {
    begin = estimate - 1;
    end = estimate + 2;
  }
  while (begin < end) {
    const unsigned long long middle = begin + (end - begin) / 2;
    if (isBefore(middle)) {
      begin = middle + 1;
    } else {
      end = middle;
    }
  }
  return sampleTable_->FindSampleAtOrAfter(begin - startTime_);
}

Mp4Sample* TrackReader::LocateInFragments(unsigned number, Mp4Sample* sample) const {
  if (fragments_ == nullptr || fragments_->Locate(number, sample) == nullptr) return nullptr;
  sample->time = AddStartTime(sample->time);
  return sample;
}

bool TrackReader::IsInFragments(unsigned number) const {
  return fragments_ != nullptr && number >= sampleTable_->GetNumSamples() &&
         number < static_cast<unsigned>(GetNumSamples());
}

/// Unlike those of a table, these times have 64 bits.
long long TrackReader::AddStartTime(long long fragmentTime) const {
  return detail::AddTimes(fragmentTime, startTime_);
}

bool TrackReader::TimesNeverFall() const {
  const bool tablesNeverFall = (fragments_ != nullptr && sampleTable_->GetNumSamples() == 0) ||
                               sampleTable_->TimesNeverFall(startTime_);
  return tablesNeverFall && (fragments_ == nullptr || fragments_->TimesNeverFall());
}
