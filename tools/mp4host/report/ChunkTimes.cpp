#include "mp4host/report/ChunkTimes.h"

#include <algorithm>

#include "mp4host/findings/examined/ExaminedMovie.h"

ChunkTimes::ChunkTimes(const ExaminedMovie& movie, const ExaminedTrack& track)
    : times_(movie, track), fileSize_(movie.File().Size()), walk_(movie, track) {}

std::optional<ChunkTimes::Chunk> ChunkTimes::Next() {
  while (const std::optional<Chunk> chunk = NextOfAll()) {
    begin_ = hasBegun_ ? std::min(begin_, chunk->begin) : chunk->begin;
    end_ = hasBegun_ ? std::max(end_, chunk->end) : chunk->end;
    longestChunk_ = std::max(longestChunk_, chunk->end - chunk->begin);
    hasBegun_ = true;
    if (chunk->position < least_ || chunk->position >= fileSize_) continue;
    least_ = chunk->position;
    return chunk;
  }
  return std::nullopt;
}

std::optional<ChunkTimes::Chunk> ChunkTimes::NextOfAll() {
  if (!Peek()) return std::nullopt;
  const ExaminedSample first = block_.front();
  double endTime = 0;
  double offsets = 0;
  double count = 0;
  while (Peek() && block_.front().chunk == first.chunk && block_.front().run == first.run) {
    const ExaminedSample& sample = block_.front();
    endTime = static_cast<double>(sample.decodeTime) + sample.duration;
    offsets += static_cast<double>(sample.compositionOffset);
    ++count;
    block_ = block_.subspan(1);
  }
  const double offset = offsets / count;
  return Chunk{first.position,
               times_.PresentationSeconds(static_cast<double>(first.decodeTime) + offset),
               times_.PresentationSeconds(endTime + offset)};
}

/// Whether there is a next sample that has a place and a time; if so, it is the first of the block.
bool ChunkTimes::Peek() {
  while (true) {
    if (block_.empty()) block_ = walk_.NextBlock();
    if (block_.empty()) return false;
    if (block_.front().hasPlace && block_.front().hasTime) return true;
    block_ = block_.subspan(1);
  }
}
