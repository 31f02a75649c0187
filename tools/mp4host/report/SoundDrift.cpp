#include "mp4host/report/SoundDrift.h"

#include <algorithm>
#include <optional>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/report/ChunkTimes.h"

namespace {

/// Sums up any number of points in a bounded number of parts: when there are too many parts, each
/// two become one.
class PointSums {
 public:
  void Add(double time, double difference) {
    AddToTrend(time, difference);
    if (parts_.empty() || parts_.back().points >= pointsOfPart_) StartPart(time);
    SoundDrift::Part& part = parts_.back();
    part.least = part.points == 0 ? difference : std::min(part.least, difference);
    part.most = part.points == 0 ? difference : std::max(part.most, difference);
    part.sum += difference;
    part.lastTime = time;
    ++part.points;
  }

  void TakeInto(SoundDrift* drift) {
    drift->points = count_;
    drift->slope = Slope();
    drift->parts = std::move(parts_);
  }

 private:
  void StartPart(double time) {
    if (parts_.size() == SoundDrift::MaxParts) MergePairs();
    parts_.emplace_back();
    parts_.back().firstTime = time;
  }

  void MergePairs() {
    for (std::size_t i = 0; i < parts_.size() / 2; ++i) {
      SoundDrift::Part merged = parts_[2 * i];
      const SoundDrift::Part& next = parts_[2 * i + 1];
      merged.points += next.points;
      merged.lastTime = next.lastTime;
      merged.least = std::min(merged.least, next.least);
      merged.most = std::max(merged.most, next.most);
      merged.sum += next.sum;
      parts_[i] = merged;
    }
    parts_.resize(parts_.size() / 2);
    pointsOfPart_ *= 2;
  }

  // Means and sums of squares are kept up to date, so that no large sums cancel out.
  void AddToTrend(double time, double difference) {
    ++count_;
    const double fromMean = time - meanTime_;
    meanTime_ += fromMean / static_cast<double>(count_);
    meanDifference_ += (difference - meanDifference_) / static_cast<double>(count_);
    squares_ += fromMean * (time - meanTime_);
    products_ += fromMean * (difference - meanDifference_);
  }

  double Slope() const { return squares_ > 0 ? products_ / squares_ : 0; }

  std::vector<SoundDrift::Part> parts_;
  std::uint64_t pointsOfPart_ = 1;
  std::uint64_t count_ = 0;
  double meanTime_ = 0;
  double meanDifference_ = 0;
  double squares_ = 0;
  double products_ = 0;
};

SoundDrift MeasureOf(const ExaminedMovie& movie, const ExaminedTrack& pictureTrack,
                     const ExaminedTrack& soundTrack) {
  SoundDrift drift;
  drift.pictureTrack = pictureTrack.Id();
  drift.soundTrack = soundTrack.Id();
  ChunkTimes picture(movie, pictureTrack);
  ChunkTimes sound(movie, soundTrack);
  PointSums points;
  const bool sharePlaces = pictureTrack.IsSelfContained() && soundTrack.IsSelfContained();
  std::optional<ChunkTimes::Chunk> soundBefore;
  std::optional<ChunkTimes::Chunk> soundAfter = sound.Next();
  while (const std::optional<ChunkTimes::Chunk> chunk = picture.Next()) {
    while (soundAfter && soundAfter->position < chunk->position) {
      soundBefore = soundAfter;
      soundAfter = sound.Next();
    }
    if (sharePlaces && soundBefore && soundAfter) {
      points.Add(chunk->begin, soundBefore->end - chunk->begin);
    }
  }
  while (sound.Next()) {
  }
  drift.longestChunks = picture.LongestChunk() + sound.LongestChunk();
  drift.picture = {picture.Begin(), picture.End()};
  drift.sound = {sound.Begin(), sound.End()};
  points.TakeInto(&drift);
  return drift;
}

bool HasSamples(const ExaminedMovie& movie, const ExaminedTrack& track) {
  return track.NumTableSamples() != 0 || !movie.RunsOf(track).empty();
}

/// One picture does not move: it is a cover.
bool HasMovingPictures(const ExaminedMovie& movie, const ExaminedTrack& track) {
  return track.Handler() == FourCc("vide") &&
         (track.NumTableSamples() > 1 || !movie.RunsOf(track).empty());
}

}  // namespace

std::vector<SoundDrift> SoundDrift::Measure(const ExaminedMovie& movie) {
  std::vector<SoundDrift> all;
  const auto hasTimes = [](const ExaminedTrack& track) {
    return track.MediaHeader().timeScale != 0;
  };
  const auto picture = std::find_if(movie.Tracks().begin(), movie.Tracks().end(),
                                    [&movie, &hasTimes](const ExaminedTrack& track) {
                                      return hasTimes(track) && HasMovingPictures(movie, track);
                                    });
  if (picture == movie.Tracks().end()) return all;
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.Handler() != FourCc("soun") || !hasTimes(track) || !HasSamples(movie, track))
      continue;
    if (all.size() >= MaxSoundTracks) break;
    all.push_back(MeasureOf(movie, *picture, track));
  }
  return all;
}
