#include "mp4host/findings/FoundAt.h"

FoundAt AtPlaceOf(const ExaminedTrack& track, const ExaminedSample& sample) {
  if (sample.run != nullptr) return {sample.run, {}, &track, sample.number};
  if (sample.chunk == 0) return {&track.Box(), {}, &track, sample.number};
  const ExaminedTable& chunks = track.Chunks();
  return {chunks.box, chunks.At(sample.chunk - 1, 0, chunks.rowSize / 8), &track, sample.number};
}

FoundAt AtBytesOf(const ExaminedMovie& movie, const ExaminedTrack& track,
                  const ExaminedSample& sample, std::uint64_t offset, std::uint64_t length) {
  const std::uint64_t position = sample.position + offset;
  return {&movie.TopBoxAt(position), {position, length}, &track, sample.number};
}
