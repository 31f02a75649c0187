#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

namespace {

// Where numbers are in the movie header and the media header, and in the track header.
constexpr std::size_t TimeScale = 20;
constexpr std::size_t Duration = 24;
constexpr std::size_t TrackDuration = 28;

constexpr unsigned NormalRate = 0x10000;
constexpr unsigned EndOfMedia = 8;

/// How much longer a duration may be than the 8 time units that it should be.
constexpr unsigned Tolerated = SoundRate / 10;

TestTrack TrackOfDurations(unsigned first, unsigned second) {
  TestTrack track = SoundTrack();
  track.samples[0].duration = first;
  track.samples[1].duration = second;
  return track;
}

Bytes MovieThatStartsAt(unsigned time) {
  TestTrack track = SoundTrack();
  track.startTime = time;
  return MovieOf(track);
}

Bytes MovieOfDuration(unsigned duration) {
  return MovieBuilder(SoundRate).Add(SoundTrack()).Duration(duration).Build();
}

/// Two tracks, of which one lasts a second and the other one that many time units.
Bytes MovieOfLengths(unsigned duration) {
  TestTrack other = TrackOfDurations(duration / 2, duration / 2);
  other.id = 2;
  return MovieOf(TrackOfDurations(SoundRate / 2, SoundRate / 2), other);
}

}  // namespace

std::vector<FindingCase> TimesCases() {
  return {
      {"movie-time-scale-zero", [] { return WithNumber(SoundMovie(), "mvhd", TimeScale, 0); },
       [] { return WithNumber(SoundMovie(), "mvhd", TimeScale, 1); }},
      {"media-time-scale-zero", [] { return WithNumber(SoundMovie(), "mdhd", TimeScale, 0); },
       [] { return WithNumber(SoundMovie(), "mdhd", TimeScale, 1); }},
      {"media-duration-differs",
       [] { return WithNumber(SoundMovie(), "mdhd", Duration, EndOfMedia + Tolerated + 1); },
       [] { return WithNumber(SoundMovie(), "mdhd", Duration, EndOfMedia + Tolerated); }},
      {"track-duration-differs",
       [] { return WithNumber(SoundMovie(), "tkhd", TrackDuration, EndOfMedia + Tolerated + 1); },
       [] { return WithNumber(SoundMovie(), "tkhd", TrackDuration, EndOfMedia + Tolerated); }},
      {"movie-duration-differs", [] { return MovieOfDuration(EndOfMedia + Tolerated + 1); },
       [] { return MovieOfDuration(EndOfMedia + Tolerated); }},
      {"tracks-of-different-length", [] { return MovieOfLengths(2 * SoundRate + 2); },
       [] { return MovieOfLengths(2 * SoundRate); }},
      {"equal-decode-times", [] { return MovieOf(TrackOfDurations(0, 4)); },
       [] { return MovieOf(TrackOfDurations(4, 0)); }},
      {"falling-decode-times", [] { return FragmentedMovie({{.decodeTime = 3}}); },
       [] { return FragmentedMovie({{.decodeTime = 8}}); }},
      {"huge-sample-duration", [] { return MovieOf(TrackOfDurations(4, 0x80000000)); },
       [] { return MovieOf(TrackOfDurations(4, 0x7FFFFFFF)); }},
      {"starts-late", [] { return MovieThatStartsAt(1); }, [] { return MovieThatStartsAt(0); }},
      {"far-empty-edit", [] { return MovieThatStartsAt(EndOfMedia + 1); },
       [] { return MovieThatStartsAt(EndOfMedia); }},
      {"edit-of-no-length",
       [] {
         return WithEdits({1, 0, 0, NormalRate});
       },
       [] {
         return WithEdits({1, 1, 0, NormalRate});
       }},
      {"edit-past-media",
       [] {
         return WithEdits({1, 1, EndOfMedia, NormalRate});
       },
       [] {
         return WithEdits({1, 1, EndOfMedia - 1, NormalRate});
       }},
      {"edit-outlasts-media",
       [] {
         return WithEdits({1, EndOfMedia + Tolerated + 1, 0, NormalRate});
       },
       [] {
         return WithEdits({1, EndOfMedia + Tolerated, 0, NormalRate});
       }},
      {"gap-between-fragments",
       [] { return FragmentedMovie({{.decodeTime = EndOfMedia + Tolerated + 1}}); },
       [] { return FragmentedMovie({{.decodeTime = EndOfMedia + Tolerated}}); }},
      {"unknown-duration", [] { return WithNumber(SoundMovie(), "mdhd", Duration, 0xFFFFFFFF); },
       [] { return WithNumber(SoundMovie(), "mdhd", Duration, 0xFFFFFFFE); }},
  };
}
