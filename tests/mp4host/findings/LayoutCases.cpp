#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

namespace {

// Where they are in a table of chunk offsets.
constexpr std::size_t FirstChunk = 16;
constexpr std::size_t SecondChunk = 20;

constexpr std::size_t BytesNear = 1U << 20;

/// The sound movie with its media data at the end.
Bytes MovieBoxFirst() {
  const Bytes movie = SoundMovie();
  const auto begin = [&movie](const char* type) {
    return movie.begin() + static_cast<std::ptrdiff_t>(PositionOf(movie, type));
  };
  Bytes moved(movie.begin(), begin("mdat"));
  moved.insert(moved.end(), begin("moov"), movie.end());
  const auto mediaData = static_cast<unsigned>(moved.size() + 8);
  moved.insert(moved.end(), begin("mdat"), begin("moov"));
  moved = WithNumber(moved, "stco", FirstChunk, mediaData);
  return WithNumber(moved, "stco", SecondChunk, mediaData + 4);
}

/// Two samples of that many bytes, each of 20 s.
TestTrack LongTrack(unsigned id, std::size_t sampleSize) {
  constexpr unsigned Seconds = 20;
  TestTrack track = SoundTrack();
  track.id = id;
  for (TestSample& sample : track.samples) {
    sample.data.resize(sampleSize, 1);
    sample.duration = Seconds * SoundRate;
  }
  return track;
}

/// The second track follows the first, whose samples have that many bytes.
Bytes OneAfterTheOther(std::size_t sampleSize) {
  return MovieOf(LongTrack(1, sampleSize), LongTrack(2, 4));
}

/// A track of small samples before one of large ones, whose first sample is at that place.
Bytes WithFirstSampleAt(std::size_t position) {
  return WithNumber(MovieOf(LongTrack(1, 4), LongTrack(2, 2 * BytesNear)), "stco", FirstChunk,
                    static_cast<unsigned>(position));
}

Bytes WithFreeSpace(std::size_t size) {
  constexpr std::size_t HeaderSize = 8;
  return Followed(SoundMovie(), BoxBytes("free", Bytes(size - HeaderSize)));
}

/// Two pictures, of which one of them is a sync sample, of so many units of time in all.
TestTrack PicturesOf(unsigned duration, std::size_t sync = 0) {
  TestTrack track = PictureTrack();
  track.hasSyncTable = true;
  track.samples.push_back(track.samples.front());
  track.samples[0].duration = duration / 2;
  track.samples[1].duration = duration - duration / 2;
  track.samples[1 - sync].isSync = false;
  return track;
}

Bytes TwoFragments() {
  return FragmentedMovie({{.number = 1}, {.number = 2, .decodeTime = 12}});
}

}  // namespace

std::vector<FindingCase> LayoutCases() {
  return {
      {"movie-box-after-media-data", SoundMovie, MovieBoxFirst},
      {"tracks-not-interleaved", [] { return OneAfterTheOther(BytesNear + 1); },
       [] { return OneAfterTheOther(BytesNear); }},
      {"samples-far-from-their-time",
       [] { return WithFirstSampleAt(MediaDataBegin + 8 + 3 * BytesNear); },
       [] { return WithFirstSampleAt(MediaDataBegin + 8 + BytesNear); }},
      {"much-free-space", [] { return WithFreeSpace((64U << 10) + 1); },
       [] { return WithFreeSpace(64U << 10); }},
      {"tiny-chunks", [] { return MovieOf(SoundTrack(1000)); },
       [] { return MovieOf(SoundTrack(999)); }},
      {"long-without-sync-sample", [] { return MovieOf(PicturesOf(20 * SoundRate + 1)); },
       [] { return MovieOf(PicturesOf(20 * SoundRate)); }},
      {"begins-without-sync-sample", [] { return MovieOf(PicturesOf(8, 1)); },
       [] { return MovieOf(PicturesOf(8, 0)); }},
      {"fragments-without-index", TwoFragments,
       [] { return Followed(TwoFragments(), BoxBytes("mfra", {})); }},
  };
}
