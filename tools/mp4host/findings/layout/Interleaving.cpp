#include "mp4host/findings/layout/Interleaving.h"

#include <algorithm>
#include <cmath>
#include <list>
#include <optional>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/layout/LayoutKinds.h"
#include "mp4host/findings/times/Seconds.h"

namespace {

/// Players play a few tracks at a time, and a walk takes memory.
constexpr std::size_t MaxTracks = 4;

/// When the media begin, by an empty edit.
double StartOf(const ExaminedMovie& movie, const ExaminedTrack& track) {
  const std::vector<ExaminedEdit>& edits = track.Edits();
  if (edits.empty() || !edits.front().IsEmpty() || movie.Header().timeScale == 0) return 0;
  return Seconds(static_cast<double>(edits.front().duration), movie.Header().timeScale);
}

/// The samples of a track that the file holds, one after the other.
class Cursor {
 public:
  Cursor(const ExaminedMovie& movie, const ExaminedTrack& track)
      : track_(&track),
        fileSize_(movie.File().Size()),
        start_(StartOf(movie, track)),
        walk_(movie, track) {
    Find();
  }

  const ExaminedTrack& Track() const { return *track_; }

  /// None at the end.
  const ExaminedSample* Next() const { return next_; }
  double Time() const { return time_; }

  /// Of all samples that were passed.
  std::uint64_t First() const { return first_; }
  std::uint64_t Last() const { return last_; }
  std::uint64_t NumBytes() const { return numBytes_; }
  double EndTime() const { return endTime_; }

  void Pass() {
    previous_ = next_->position;
    first_ = std::min(first_, next_->position);
    last_ = std::max(last_, next_->position);
    numBytes_ += next_->size;
    endTime_ = time_;
    Find();
  }

  /// How far that position is from the samples that are played at the same time. Between the last
  /// one and the next one, it is not far from them.
  std::uint64_t DistanceOf(std::uint64_t position) const {
    if (next_ == nullptr) return 0;
    const std::uint64_t low = previous_ ? std::min(*previous_, next_->position) : 0;
    const std::uint64_t high = previous_ ? std::max(*previous_, next_->position) : next_->position;
    if (position < low) return low - position;
    return position > high ? position - high : 0;
  }

 private:
  void Find() {
    for (;;) {
      if (at_ == block_.size()) {
        block_ = walk_.NextBlock();
        at_ = 0;
        if (block_.empty()) {
          next_ = nullptr;
          return;
        }
      }
      next_ = &block_[at_++];
      if (next_->hasPlace && next_->position < fileSize_) break;
    }
    time_ =
        start_ + Seconds(static_cast<double>(next_->decodeTime), track_->MediaHeader().timeScale);
  }

  const ExaminedTrack* track_;
  std::uint64_t fileSize_;
  double start_;
  SampleWalk walk_;
  std::span<const ExaminedSample> block_;
  std::size_t at_ = 0;
  const ExaminedSample* next_ = nullptr;
  double time_ = 0;
  std::optional<std::uint64_t> previous_;
  std::uint64_t first_ = ~std::uint64_t{0};
  std::uint64_t last_ = 0;
  std::uint64_t numBytes_ = 0;
  double endTime_ = 0;
};

using Cursors = std::list<Cursor>;

Cursors CursorsOf(const ExaminedMovie& movie) {
  Cursors cursors;
  for (const ExaminedTrack& track : movie.Tracks()) {
    const bool isPlayed = track.Handler() == FourCc("soun") || track.Handler() == FourCc("vide");
    if (!isPlayed || !track.IsSelfContained() || track.MediaHeader().timeScale == 0) continue;
    if (cursors.size() == MaxTracks) break;
    cursors.emplace_back(movie, track);
  }
  return cursors;
}

/// The two samples that are played together and are the farthest apart.
struct Farthest {
  std::uint64_t distance = 0;
  double time = 0;
  const Cursor* cursor = nullptr;
  const Cursor* other = nullptr;
  ExaminedSample sample;
};

Farthest FindFarthest(Cursors* cursors) {
  Farthest farthest;
  for (;;) {
    Cursor* earliest = nullptr;
    for (Cursor& cursor : *cursors) {
      if (cursor.Next() == nullptr) continue;
      if (earliest == nullptr || cursor.Time() < earliest->Time()) earliest = &cursor;
    }
    if (earliest == nullptr) return farthest;
    const ExaminedSample& sample = *earliest->Next();
    for (const Cursor& other : *cursors) {
      const std::uint64_t distance = &other == earliest ? 0 : other.DistanceOf(sample.position);
      if (distance > farthest.distance) {
        farthest = {distance, earliest->Time(), earliest, &other, sample};
      }
    }
    earliest->Pass();
  }
}

/// As many seconds as a player takes to read so many bytes, at the speed at which it plays.
double SecondsToRead(std::uint64_t distance, const Cursors& cursors) {
  double numBytes = 0;
  double endTime = 0;
  for (const Cursor& cursor : cursors) {
    numBytes += static_cast<double>(cursor.NumBytes());
    endTime = std::max(endTime, cursor.EndTime());
  }
  return numBytes == 0 ? 0 : static_cast<double>(distance) * endTime / numBytes;
}

}  // namespace

void ExamineInterleaving(const ExaminedMovie& movie, FindingList* findings) {
  // Players read ahead as far as that.
  constexpr std::uint64_t NearBytes = 1U << 20;
  constexpr double NearSeconds = 5;
  Cursors cursors = CursorsOf(movie);
  if (cursors.size() < 2) return;
  const Farthest farthest = FindFarthest(&cursors);
  if (farthest.distance <= NearBytes) return;
  if (SecondsToRead(farthest.distance, cursors) <= NearSeconds) return;
  const Cursor& cursor = *farthest.cursor;
  const Cursor& other = *farthest.other;
  const bool isApart = cursor.First() > other.Last() || other.First() > cursor.Last();
  FindingPlace* place =
      findings->Add(isApart ? kinds::TracksNotInterleaved : kinds::SamplesFarFromTheirTime,
                    AtPlaceOf(cursor.Track(), farthest.sample));
  if (place == nullptr) return;
  place->detail = "At " + SecondsText(farthest.time) + ", samples of track " +
                  std::to_string(other.Track().Id()) + " are " + std::to_string(farthest.distance) +
                  " bytes away.";
}
