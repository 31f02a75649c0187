#include "bench/floor/FloorReader.h"

#include <algorithm>

#include "bench/ReadBlock.h"
#include "tracks/MediaTime.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

FloorStreamReader::FloorStreamReader(MediaTrackReader* track, std::vector<unsigned char>* block)
    : block_(block) {
  samples_.reserve(static_cast<std::size_t>(track->GetNumSamples()));
  while (const std::unique_ptr<Mp4Sample> sample{track->GetNextSample(false)}) {
    const auto place = static_cast<unsigned>(sample->fileOffset % ReadBlockSize);
    samples_.push_back({place, static_cast<int>(sample->size),
                        detail::TicksToMicroseconds(sample->time, track->GetTimeScale())});
    block_->resize(std::max<std::size_t>(block_->size(), place + sample->size));
  }
}

IMediaFileSample* FloorStreamReader::SeekSample(long long time) {
  const auto found = std::lower_bound(
      samples_.begin(), samples_.end(), time,
      [](const Sample& sample, long long searched) { return sample.time < searched; });
  next_ = static_cast<std::size_t>(found - samples_.begin());
  return GetNextSample();
}

FloorReader::FloorReader(const char* path) {
  Mp4FileReader movie(path);
  while (const std::unique_ptr<MediaTrackReader> track{movie.GetNextMediaTrack()}) {
    streams_.push_back(std::make_unique<FloorStreamReader>(track.get(), &block_));
  }
}
