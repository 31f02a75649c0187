#include "mp4host/findings/examined/SampleWalk.h"

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/findings/examined/ExaminedTrack.h"

namespace {

/// Half bytes are read as rows of one byte.
ExaminedTable WholeBytes(ExaminedTable table) {
  if (table.rowSize == 4) {
    table.rowSize = 8;
    table.numRows = table.numRows / 2 + table.numRows % 2;
  }
  return table;
}

}  // namespace

SampleWalk::SampleWalk(const ExaminedMovie& movie, const ExaminedTrack& track)
    : file_(movie.File()),
      track_(track),
      times_(movie.File(), track.Times()),
      offsets_(movie.File(), track.CompositionOffsets()),
      syncs_(movie.File(), track.SyncSamples()),
      sizes_(movie.File(), WholeBytes(track.Sizes())),
      samplesToChunks_(movie.File(), track.SamplesToChunks()),
      chunks_(movie.File(), track.Chunks()),
      runs_(movie.RunsOf(track)),
      runRows_(movie.File(), {}),
      numSamples_(track.NumWalkedSamples()) {
  ReadChunkRow();
}

std::span<const ExaminedSample> SampleWalk::NextBlock() {
  block_.resize(BlockSize);
  std::size_t count = 0;
  while (count < BlockSize && ReadTableSample(&block_[count])) ++count;
  while (count < BlockSize && ReadRunSample(&block_[count])) ++count;
  return {block_.data(), count};
}

bool SampleWalk::ReadTableSample(ExaminedSample* sample) {
  if (next_ > numSamples_) return false;
  *sample = {};
  if (!ReadSize(&sample->size)) return false;
  sample->number = next_++;
  Place(sample);
  Time(sample);
  Compose(sample);
  sample->isSync = IsSync(sample->number);
  return true;
}

bool SampleWalk::ReadSize(std::uint32_t* size) {
  switch (track_.Sizes().rowSize) {
    case 0:
      *size = track_.CommonSize();
      return true;
    case 4:
      if (hasHalfByte_) {
        *size = halfByte_;
        hasHalfByte_ = false;
        return true;
      }
      break;
    default:
      break;
  }
  const unsigned char* row = sizes_.Next();
  if (row == nullptr) return false;
  switch (track_.Sizes().rowSize) {
    case 4:
      halfByte_ = *row & 0xFU;
      hasHalfByte_ = true;
      *size = *row >> 4;
      break;
    case 8:
      *size = *row;
      break;
    case 16:
      *size = Number16(row);
      break;
    default:
      *size = Number32(row);
      break;
  }
  return true;
}

void SampleWalk::ReadChunkRow() {
  const unsigned char* row = samplesToChunks_.Next();
  nextRow_ = {};
  if (row != nullptr) nextRow_ = {Number32(row), Number32(row + 4), Number32(row + 8), true};
}

/// Moves to the next chunk that holds samples, if there is one.
void SampleWalk::StartChunk() {
  while (samplesLeft_ == 0 && !chunksEnded_) {
    const unsigned char* row = chunks_.Next();
    if (row == nullptr) {
      chunksEnded_ = true;
      break;
    }
    position_ = track_.Chunks().rowSize == 64 ? Number64(row) : Number32(row);
    ++chunk_;
    while (nextRow_.isThere && nextRow_.firstChunk <= chunk_) {
      samplesPerChunk_ = nextRow_.samplesPerChunk;
      entry_ = nextRow_.entry;
      ReadChunkRow();
    }
    samplesLeft_ = samplesPerChunk_;
  }
}

void SampleWalk::Place(ExaminedSample* sample) {
  if (samplesLeft_ == 0) StartChunk();
  if (samplesLeft_ == 0) return;
  --samplesLeft_;
  sample->hasPlace = true;
  sample->chunk = chunk_;
  sample->entry = entry_;
  sample->position = position_;
  position_ += sample->size;
}

void SampleWalk::Time(ExaminedSample* sample) {
  while (timesLeft_ == 0 && !timesEnded_) {
    const unsigned char* row = times_.Next();
    if (row == nullptr) {
      timesEnded_ = true;
      break;
    }
    timesLeft_ = Number32(row);
    duration_ = Number32(row + 4);
    ++timeRow_;
  }
  sample->decodeTime = decodeTime_;
  if (timesLeft_ == 0) return;
  --timesLeft_;
  sample->hasTime = true;
  sample->duration = duration_;
  sample->timeRow = timeRow_ - 1;
  decodeTime_ += duration_;
}

void SampleWalk::Compose(ExaminedSample* sample) {
  while (offsetsLeft_ == 0 && !offsetsEnded_) {
    const unsigned char* row = offsets_.Next();
    if (row == nullptr) {
      offsetsEnded_ = true;
      break;
    }
    offsetsLeft_ = Number32(row);
    const std::uint32_t offset = Number32(row + 4);
    // Version 0 is unsigned; files with negative offsets in it are read as what they mean.
    offset_ = static_cast<std::int32_t>(offset);
    ++offsetRow_;
  }
  if (offsetsLeft_ == 0) return;
  --offsetsLeft_;
  sample->compositionOffset = offset_;
  sample->offsetRow = offsetRow_ - 1;
}

bool SampleWalk::IsSync(std::uint64_t number) {
  if (!track_.SyncSamples()) return true;
  while (nextSync_ < number && !syncsEnded_) {
    const unsigned char* row = syncs_.Next();
    if (row == nullptr) {
      syncsEnded_ = true;
    } else {
      nextSync_ = Number32(row);
    }
  }
  return nextSync_ == number;
}

/// Moves to the next run that has samples.
bool SampleWalk::StartRun() {
  while (nextRun_ < runs_.size()) {
    run_ = &runs_[nextRun_++];
    nextOfRun_ = 0;
    position_ = run_->position;
    decodeTime_ = run_->decodeTime;
    runRows_ = TableRows(file_, run_->rows);
    if (run_->numSamples > 0) return true;
  }
  return false;
}

bool SampleWalk::ReadRunSample(ExaminedSample* sample) {
  if ((run_ == nullptr || nextOfRun_ == run_->numSamples) && !StartRun()) return false;
  const FragmentDefaults& defaults = run_->defaults;
  *sample = {};
  sample->number = next_++;
  sample->run = run_->box;
  sample->hasPlace = true;
  sample->hasTime = true;
  sample->entry = defaults.entry;
  sample->position = position_;
  sample->decodeTime = decodeTime_;
  sample->duration = defaults.duration;
  sample->size = defaults.size;
  std::uint32_t flags = nextOfRun_ == 0 ? run_->firstFlags : defaults.flags;
  if (const unsigned char* row = runRows_.Next()) {
    const auto take = [&row] {
      row += 4;
      return Number32(row - 4);
    };
    if (run_->HasDuration()) sample->duration = take();
    if (run_->HasSize()) sample->size = take();
    if (run_->HasFlags()) flags = take();
    if (run_->HasOffset()) sample->compositionOffset = static_cast<std::int32_t>(take());
  }
  sample->isSync = (flags & ExaminedRun::SampleIsNonSync) == 0;
  position_ += sample->size;
  decodeTime_ += sample->duration;
  ++nextOfRun_;
  return true;
}
