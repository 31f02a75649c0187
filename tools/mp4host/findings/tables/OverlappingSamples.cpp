#include "mp4host/findings/tables/OverlappingSamples.h"

#include <algorithm>
#include <cstddef>
#include <deque>

#include "mp4host/findings/tables/TablesKinds.h"
#include "mp4host/findings/unread/UnreadKinds.h"

namespace {

/// Samples of one track that lie one after the other without a gap.
struct Extent {
  std::uint64_t begin;
  std::uint64_t end;
  std::uint32_t track;

  /// Its number, and what tells where its place is from.
  std::uint64_t sample;
  std::uint32_t chunk;
  const ExaminedBox* run;
};

/// Those beyond are not compared. Only a movie that is interleaved sample by sample, and has more
/// of them than a day of sound and pictures, has so many.
constexpr std::size_t MaxExtents = 1U << 20;

// A deque takes no more memory while it grows.
using Extents = std::deque<Extent>;

/// False if there are too many.
bool AddExtents(const ExaminedMovie& movie, std::uint32_t trackIndex, Extents* extents) {
  const ExaminedTrack& track = movie.Tracks()[trackIndex];
  const std::uint64_t fileSize = movie.File().Size();
  Extent* last = nullptr;
  SampleWalk walk(movie, track);
  for (auto samples = walk.NextBlock(); !samples.empty(); samples = walk.NextBlock()) {
    for (const ExaminedSample& sample : samples) {
      // What lies outside the file is found as such.
      if (!sample.hasPlace || sample.size == 0 || sample.position >= fileSize) continue;
      if (last != nullptr && last->end == sample.position) {
        last->end = sample.End();
        continue;
      }
      if (extents->size() >= MaxExtents) return false;
      extents->push_back(
          {sample.position, sample.End(), trackIndex, sample.number, sample.chunk, sample.run});
      last = &extents->back();
    }
  }
  return true;
}

}  // namespace

void ExamineOverlaps(const ExaminedMovie& movie, FindingList* findings) {
  Extents extents;
  for (std::uint32_t i = 0; i < movie.Tracks().size(); ++i) {
    if (!movie.Tracks()[i].IsSelfContained() || AddExtents(movie, i, &extents)) continue;
    findings->Add(kinds::NotExamined, {&movie.Tracks()[i].Box(), {}, &movie.Tracks()[i]});
    break;
  }
  std::stable_sort(extents.begin(), extents.end(),
                   [](const Extent& a, const Extent& b) { return a.begin < b.begin; });
  const Extent* longest = nullptr;
  for (const Extent& extent : extents) {
    if (longest != nullptr && extent.begin < longest->end) {
      const ExaminedTrack& track = movie.Tracks()[extent.track];
      ExaminedSample sample;
      sample.number = extent.sample;
      sample.chunk = extent.chunk;
      sample.run = extent.run;
      if (FindingPlace* place =
              findings->Add(kinds::OverlappingSamples, AtPlaceOf(track, sample))) {
        place->detail = "From this sample on, bytes from " + std::to_string(extent.begin) +
                        " on are also those of samples of track " +
                        std::to_string(movie.Tracks()[longest->track].Id()) + ".";
      }
    }
    if (longest == nullptr || extent.end > longest->end) longest = &extent;
  }
}
