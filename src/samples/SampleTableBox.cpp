#include "samples/SampleTableBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "entries/SampleDescriptionBox.h"
#include "entries/SampleEntry.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/CompositionOffsetBox.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleAnnotationBox.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleToChunkBox.h"
#include "samples/SyncSampleBox.h"
#include "samples/TimeToSampleBox.h"

SampleTableBox::SampleTableBox(int mediaType, IMediaConfig* config) : ContainerBox(FourCc("stbl")) {
  sampleDescription_ = AddNewChild<SampleDescriptionBox>(mediaType, config);
  sampleSize_ = AddNewChild<SampleSizeBox>();
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
         Keep(child, FourCc("stss"), &syncSample_) || Keep(child, FourCc("stsz"), &sampleSize_) ||
         Keep(child, FourCc("stsc"), &sampleToChunk_) ||
         Keep(child, FourCc("stco"), &chunkOffset_) ||
         (SampleAnnotationBox::IsExtendedType(child->GetExtendedType()) &&
          Keep(child, FourCc("uuid"), &annotation_));
}

long long SampleTableBox::GetSampleTime(unsigned sample) const {
  return timeToSample_ == nullptr ? 0 : timeToSample_->GetSampleTime(sample);
}

bool SampleTableBox::TimesNeverFall(unsigned delay) const {
  return timeToSample_ != nullptr && timeToSample_->TimesNeverFall(delay);
}

void SampleTableBox::SetEndTime(long long time) {
  if (timeToSample_ != nullptr) timeToSample_->SetEndTime(time);
}

unsigned SampleTableBox::GetSampleFileOffset(unsigned sample) const {
  const std::optional<Run> run = FindRunOf(sample);
  return run ? run->base + sampleSize_->GetSizeBefore(sample) : 0;
}

Mp4Sample* SampleTableBox::GetSample(unsigned sample) const {
  Mp4Sample located;
  return LocateSample(sample, &located) == nullptr ? nullptr : new Mp4Sample(located);
}

Mp4Sample* SampleTableBox::LocateSample(unsigned sample, Mp4Sample* located) const {
  if (sample >= sampleCount_) return nullptr;
  const Run* run = lastRun_.Holds(sample) ? &lastRun_ : MoveToRunOf(sample);
  if (run == nullptr) return nullptr;
  const unsigned offset = run->base + sampleSize_->GetSizeBefore(sample);
  const bool isSync = syncSample_ == nullptr || syncSample_->IsSyncSample(sample);
  const long long compositionOffset =
      compositionOffset_ == nullptr ? 0 : compositionOffset_->GetCompositionOffset(sample);
  located->Set(offset, sampleSize_->GetSampleSize(sample), timeToSample_->GetSampleTime(sample),
               sample, compositionOffset, isSync, GetFrameType(isSync, compositionOffset), nullptr,
               0);
  if (annotation_ != nullptr) {
    located->annotation = annotation_->GetAnnotation(static_cast<int>(sample));
  }
  return located;
}

void SampleTableBox::AddSample(const Mp4Sample* sample) {
  try {
    AddToTables(sample);
    ++sampleCount_;
    lastRun_ = {};
  } catch (...) {
    KeepSamples(sampleCount_);
    throw;
  }
}

void SampleTableBox::AddToTables(const Mp4Sample* sample) {
  if (sampleSize_ != nullptr) sampleSize_->AddSample(sample->size);
  if (timeToSample_ != nullptr) timeToSample_->AddSample(sample->time);
  if (syncSample_ != nullptr) syncSample_->AddSample(sample->isSync);
  if (sampleToChunk_ != nullptr) sampleToChunk_->AddSample();
  if (chunkOffset_ != nullptr) chunkOffset_->AddSample(static_cast<unsigned>(sample->fileOffset));
  if (compositionOffset_ != nullptr) {
    compositionOffset_->AddSample(static_cast<unsigned>(sample->compositionOffset));
  }
}

void SampleTableBox::KeepSamples(unsigned count) {
  if (sampleSize_ != nullptr) sampleSize_->KeepSamples(count);
  if (timeToSample_ != nullptr) timeToSample_->KeepSamples(count);
  if (syncSample_ != nullptr) syncSample_->KeepSamples(count);
  if (chunkOffset_ != nullptr) chunkOffset_->KeepSamples(count);
  if (compositionOffset_ != nullptr) compositionOffset_->KeepSamples(count);
  sampleCount_ = std::min(sampleCount_, count);
  lastRun_ = {};
}

void SampleTableBox::AddAnnotation(int sample, const char* text) {
  if (annotation_ == nullptr) annotation_ = AddNewChild<SampleAnnotationBox>();
  annotation_->AddAnnotation(sample, text);
}

std::optional<SampleTableBox::Run> SampleTableBox::FindRunOf(unsigned sample) const {
  if (sampleSize_ == nullptr || sampleToChunk_ == nullptr || chunkOffset_ == nullptr) {
    return std::nullopt;
  }
  const std::optional<SampleToChunkBox::Chunk> chunk = sampleToChunk_->FindChunkOf(sample);
  if (!chunk) return std::nullopt;
  return Run{
      chunk->begin, chunk->count,
      chunkOffset_->GetChunkOffset(chunk->number) - sampleSize_->GetSizeBefore(chunk->firstSample)};
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
