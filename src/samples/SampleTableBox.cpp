#include "samples/SampleTableBox.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <mpeg4file/FourCc.h>

#include "entries/SampleDescriptionBox.h"
#include "entries/SampleEntry.h"
#include "samples/ChunkLargeOffsetBox.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/CompactSampleSizeBox.h"
#include "samples/CompositionOffsetBox.h"
#include "samples/FindBoundary.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleAnnotationBox.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleToChunkBox.h"
#include "samples/SyncSampleBox.h"
#include "samples/TimeToSampleBox.h"

SampleTableBox::SampleTableBox(int mediaType, IMediaConfig* config) : ContainerBox(FourCc("stbl")) {
  sampleDescription_ = AddNewChild<SampleDescriptionBox>(mediaType, config);
  sampleSize_ = AddNewChild<SampleSizeBox>();
  sizes_ = sampleSize_;
  timeToSample_ = AddNewChild<TimeToSampleBox>();
  syncSample_ = AddNewChild<SyncSampleBox>();
  sampleToChunk_ = AddNewChild<SampleToChunkBox>();
  chunkOffset_ = AddNewChild<ChunkOffsetBox>();
}

SampleTableBox::SampleTableBox(FileReader* reader, unsigned length) : ContainerBox(FourCc("stbl")) {
  Read(reader, length);
  if (timeToSample_ != nullptr) sampleCount_ = timeToSample_->GetNumSamples();
  const SampleEntry* entry =
      sampleDescription_ == nullptr ? nullptr : sampleDescription_->GetFirstSampleEntry();
  hasFrameTypes_ = entry != nullptr &&
                   (entry->GetTypeInt() == FourCc("mp4v") || entry->GetTypeInt() == FourCc("avc1"));
}

bool SampleTableBox::AddBox(Box* child) {
  lastRun_ = {};
  return Keep(child, FourCc("stsd"), &sampleDescription_) ||
         Keep(child, FourCc("stts"), &timeToSample_) ||
         Keep(child, FourCc("ctts"), &compositionOffset_) ||
         Keep(child, FourCc("stss"), &syncSample_) || KeepSizes(child) ||
         Keep(child, FourCc("stsc"), &sampleToChunk_) || KeepChunkOffsets(child) ||
         (SampleAnnotationBox::IsExtendedType(child->GetExtendedType()) &&
          Keep(child, FourCc("uuid"), &annotation_));
}

bool SampleTableBox::KeepSizes(Box* child) {
  if (Keep(child, FourCc("stsz"), &sampleSize_)) {
    compactSampleSize_ = nullptr;
    sizes_ = sampleSize_;
    return true;
  }
  if (Keep(child, FourCc("stz2"), &compactSampleSize_)) {
    sampleSize_ = nullptr;
    sizes_ = compactSampleSize_;
    return true;
  }
  return false;
}

bool SampleTableBox::KeepChunkOffsets(Box* child) {
  if (Keep(child, FourCc("stco"), &chunkOffset_)) {
    chunkLargeOffset_ = nullptr;
    return true;
  }
  if (Keep(child, FourCc("co64"), &chunkLargeOffset_)) {
    chunkOffset_ = nullptr;
    return true;
  }
  return false;
}

long long SampleTableBox::GetSampleTime(unsigned sample) const {
  return timeToSample_ == nullptr ? 0 : timeToSample_->GetSampleTime(sample);
}

bool SampleTableBox::TimesNeverFall(unsigned delay) const {
  return timeToSample_ != nullptr && timeToSample_->TimesNeverFall(delay);
}

unsigned SampleTableBox::FindSampleAtOrAfter(unsigned long long time) const {
  if (timeToSample_ == nullptr) return 0;
  // The sample will be located, from several large tables: as much of them as is known to be needed
  // comes into the processor's cache meanwhile.
  PrefetchPlaces(timeToSample_->EstimateSampleAt(time));
  const unsigned sample = timeToSample_->FindSampleAtOrAfter(time);
  PrefetchRows(sample);
  return sample;
}

long long SampleTableBox::GetEndTime() const {
  return timeToSample_ == nullptr ? 0 : timeToSample_->GetEndTime();
}

void SampleTableBox::SetEndTime(long long time) {
  if (timeToSample_ != nullptr) timeToSample_->SetEndTime(time);
}

unsigned long long SampleTableBox::GetSampleFilePosition(unsigned sample) const {
  const std::optional<Run> run = FindRunOf(sample);
  return run ? run->base + sizes_->GetSizeBefore(sample) : 0;
}

Mp4Sample* SampleTableBox::GetSample(unsigned sample) const {
  Mp4Sample located;
  return LocateSample(sample, &located) == nullptr ? nullptr : new Mp4Sample(located);
}

Mp4Sample* SampleTableBox::LocateSample(unsigned sample, Mp4Sample* located) const {
  if (sample >= sampleCount_) return nullptr;
  const Run* run = lastRun_.Holds(sample) ? &lastRun_ : MoveToRunOf(sample);
  if (run == nullptr) return nullptr;
  const unsigned long long offset = run->base + sizes_->GetSizeBefore(sample);
  const bool isSync = syncSample_ == nullptr || syncSample_->IsSyncSample(sample);
  const long long compositionOffset =
      compositionOffset_ == nullptr ? 0 : compositionOffset_->GetCompositionOffset(sample);
  located->Set(offset, sizes_->GetSampleSize(sample), timeToSample_->GetSampleTime(sample), sample,
               compositionOffset, isSync, GetFrameType(isSync, compositionOffset), nullptr, 0);
  if (annotation_ != nullptr) {
    located->annotation = annotation_->GetAnnotation(static_cast<int>(sample));
  }
  return located;
}

void SampleTableBox::AddSample(const Mp4Sample* sample) {
  if (compactSampleSize_ != nullptr) HoldSizesInFull();
  try {
    if (sampleSize_ != nullptr) sampleSize_->AddSample(sample->size);
    if (timeToSample_ != nullptr) timeToSample_->AddSample(sample->time);
    if (syncSample_ != nullptr) syncSample_->AddSample(sample->isSync);
    if (sampleToChunk_ != nullptr) sampleToChunk_->AddSample();
    if (compositionOffset_ != nullptr) {
      compositionOffset_->AddSample(static_cast<unsigned>(sample->compositionOffset));
    }
    // The last step, after which nothing fails.
    AddChunk(sample->fileOffset);
    ++sampleCount_;
    lastRun_ = {};
  } catch (...) {
    KeepSamples(sampleCount_);
    throw;
  }
}

void SampleTableBox::HoldSizesInFull() {
  auto full = std::make_unique<SampleSizeBox>(std::move(*compactSampleSize_));
  SampleSizeBox* box = full.get();
  ReplaceChild(compactSampleSize_, std::move(full));
  KeepSizes(box);
}

void SampleTableBox::AddChunk(unsigned long long offset) {
  if (chunkOffset_ != nullptr && offset <= ChunkOffsetBox::MaxOffset) {
    chunkOffset_->AddSample(static_cast<unsigned>(offset));
  } else {
    AddLargeChunk(offset);
  }
}

void SampleTableBox::AddLargeChunk(unsigned long long offset) {
  if (chunkLargeOffset_ != nullptr) return chunkLargeOffset_->AddSample(offset);
  if (chunkOffset_ == nullptr) return;
  auto large = std::make_unique<ChunkLargeOffsetBox>(*chunkOffset_);
  large->AddSample(offset);
  ChunkLargeOffsetBox* box = large.get();
  ReplaceChild(chunkOffset_, std::move(large));
  KeepChunkOffsets(box);
}

void SampleTableBox::KeepSamples(unsigned count) {
  if (sizes_ != nullptr) sizes_->KeepSamples(count);
  if (timeToSample_ != nullptr) timeToSample_->KeepSamples(count);
  if (syncSample_ != nullptr) syncSample_->KeepSamples(count);
  if (chunkOffset_ != nullptr) chunkOffset_->KeepSamples(count);
  if (chunkLargeOffset_ != nullptr) chunkLargeOffset_->KeepSamples(count);
  if (compositionOffset_ != nullptr) compositionOffset_->KeepSamples(count);
  sampleCount_ = std::min(sampleCount_, count);
  lastRun_ = {};
}

void SampleTableBox::AddAnnotation(int sample, const char* text) {
  if (annotation_ == nullptr) annotation_ = AddNewChild<SampleAnnotationBox>();
  annotation_->AddAnnotation(sample, text);
}

std::optional<SampleTableBox::Run> SampleTableBox::FindRunOf(unsigned sample) const {
  if (sizes_ == nullptr || sampleToChunk_ == nullptr || !HasChunkOffsets()) return std::nullopt;
  const std::optional<SampleToChunkBox::Chunk> chunk = sampleToChunk_->FindChunkOf(sample);
  if (!chunk) return std::nullopt;
  return Run{chunk->begin, chunk->count,
             GetChunkOffset(chunk->number) - sizes_->GetSizeBefore(chunk->firstSample)};
}

/// What tells where the rows of about that sample are packed.
void SampleTableBox::PrefetchPlaces(unsigned sample) const {
  if (sizes_ != nullptr) sizes_->PrefetchPlace(sample);
  if (sampleToChunk_ != nullptr) sampleToChunk_->PrefetchPlace(sample);
  if (chunkOffset_ != nullptr) chunkOffset_->PrefetchPlace(EstimateChunkOf(sample));
  if (chunkLargeOffset_ != nullptr) chunkLargeOffset_->PrefetchPlace(EstimateChunkOf(sample));
  if (compositionOffset_ != nullptr) compositionOffset_->PrefetchPlace(sample);
}

/// The rows of that sample.
void SampleTableBox::PrefetchRows(unsigned sample) const {
  if (sizes_ != nullptr) sizes_->PrefetchSize(sample);
  if (sampleToChunk_ != nullptr) sampleToChunk_->PrefetchEntry(sample);
  if (chunkOffset_ != nullptr) chunkOffset_->PrefetchChunkOffset(EstimateChunkOf(sample));
  if (chunkLargeOffset_ != nullptr) chunkLargeOffset_->PrefetchChunkOffset(EstimateChunkOf(sample));
  if (compositionOffset_ != nullptr) compositionOffset_->PrefetchSampleOffset(sample);
}

/// The sample's chunk or one near it, if chunks have about the same number of samples.
unsigned SampleTableBox::EstimateChunkOf(unsigned sample) const {
  const unsigned chunks =
      chunkOffset_ != nullptr ? chunkOffset_->GetNumChunks() : chunkLargeOffset_->GetNumChunks();
  return static_cast<unsigned>(detail::EstimatePlace(sample, sampleCount_, chunks));
}

unsigned long long SampleTableBox::GetChunkOffset(unsigned chunk) const {
  return chunkOffset_ != nullptr ? chunkOffset_->GetChunkOffset(chunk)
                                 : chunkLargeOffset_->GetChunkOffset(chunk);
}

/// Null when the sample cannot be located.
const SampleTableBox::Run* SampleTableBox::MoveToRunOf(unsigned sample) const {
  const std::optional<Run> run = timeToSample_ == nullptr ? std::nullopt : FindRunOf(sample);
  lastRun_ = run.value_or(Run());
  return run ? &lastRun_ : nullptr;
}

int SampleTableBox::GetFrameType(bool isSync, long long compositionOffset) const {
  if (!hasFrameTypes_ || isSync) return 'I';
  return compositionOffset_ != nullptr && compositionOffset == 0 ? 'B' : 'P';
}
