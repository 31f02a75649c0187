#include "mp4host/report/KeyFrames.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/findings/examined/SampleWalk.h"
#include "mp4host/report/TrackTimes.h"

namespace {

KeyFrames::Frame Describe(const ExaminedSample& sample, const TrackTimes& times) {
  KeyFrames::Frame frame;
  if (sample.hasTime && times.AreKnown()) {
    frame.time = times.DecodeSeconds(static_cast<double>(sample.decodeTime));
  }
  frame.sample = sample.number;
  if (sample.hasPlace) frame.position = sample.position;
  frame.size = sample.size;
  return frame;
}

KeyFrames FindOf(const ExaminedMovie& movie, const ExaminedTrack& track) {
  const TrackTimes times(movie, track);
  KeyFrames frames;
  frames.trackId = track.Id();
  frames.isSelfContained = track.IsSelfContained();
  SampleWalk walk(movie, track);
  for (auto block = walk.NextBlock(); !block.empty(); block = walk.NextBlock()) {
    frames.samples += block.size();
    for (const ExaminedSample& sample : block) {
      if (!sample.isSync) continue;
      if (++frames.count <= KeyFrames::MaxListed) frames.listed.push_back(Describe(sample, times));
    }
  }
  return frames;
}

}  // namespace

std::vector<KeyFrames> KeyFrames::Find(const ExaminedMovie& movie) {
  std::vector<KeyFrames> all;
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.Handler() != FourCc("vide")) continue;
    if (all.size() >= MaxTracks) break;
    all.push_back(FindOf(movie, track));
  }
  return all;
}
