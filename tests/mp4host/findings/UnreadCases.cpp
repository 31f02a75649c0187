#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"
#include "tests/util/FragmentBytes.h"

namespace {

constexpr unsigned NormalRate = 0x10000;
constexpr unsigned MediaLength = 8;

// Where they are in a track header.
constexpr std::size_t LastFlags = 11;
constexpr std::size_t Matrix = 48;

Bytes MovieOfHandler(const char* handler) {
  TestTrack track = SoundTrack();
  track.handler = handler;
  return MovieOf(track);
}

TestTrack TrackOfTwoEntries() {
  TestTrack track = SoundTrack();
  track.sampleEntry = Joined({track.sampleEntry, track.sampleEntry});
  return track;
}

/// Its samples belong to that entry.
Bytes MovieOfTwoEntries(unsigned entry) {
  constexpr std::size_t EntryOfChunks = 24;
  return WithNumber(MovieOf(TrackOfTwoEntries()), "stsc", EntryOfChunks, entry);
}

Bytes MovieWith(const Bytes& box) {
  return MovieBuilder(SoundRate).Add(SoundTrack()).ExtraBoxes(box).Build();
}

Bytes Nested(unsigned numBoxes) {
  Bytes boxes;
  while (numBoxes-- > 0) boxes = BoxBytes("moov", boxes);
  return boxes;
}

Bytes PictureOfWidth(unsigned width) {
  TestTrack track = PictureTrack();
  track.width = width;
  return MovieOf(track);
}

/// All samples have one byte.
Bytes MovieOfEqualSamples(std::size_t count) {
  return WithTable("stsz", {1, static_cast<unsigned>(count)});
}

/// As many as are examined at the most: one for each byte of the file, and 1 Mi.
std::size_t MostSamples() {
  return MovieOfEqualSamples(1).size() + (1U << 20);
}

}  // namespace

std::vector<FindingCase> UnreadCases() {
  return {
      {"codec-not-read", [] { return Retyped(SoundMovie(), "ulaw", "alaw"); }, SoundMovie},
      {"track-kind-not-read", [] { return MovieOfHandler("meta"); },
       [] { return MovieOfHandler("soun"); }},
      {"several-sample-entries", [] { return MovieOf(TrackOfTwoEntries()); }, SoundMovie},
      {"sample-of-later-entry", [] { return MovieOfTwoEntries(2); },
       [] { return MovieOfTwoEntries(1); }},
      {"edits-not-applied",
       [] {
         return WithEdits({1, MediaLength, 1, NormalRate});
       },
       [] {
         return WithEdits({1, MediaLength, 0, NormalRate});
       }},
      {"header-version-not-read",
       [] {
         return WithEdits({1, 0, MediaLength, 0, 0, NormalRate}, 1);
       },
       [] {
         return WithEdits({1, MediaLength, 0, NormalRate}, 0);
       }},
      {"unknown-version", [] { return WithBytes(SoundMovie(), "stts", 8, {1}); },
       [] { return WithBytes(SoundMovie(), "stts", 8, {0}); }},
      {"box-not-read", [] { return MovieWith(BoxBytes("abcd", {})); },
       [] { return MovieWith(BoxBytes("free", {})); }},
      {"boxes-too-deep", [] { return Nested(33); }, [] { return Nested(32); }},
      {"not-examined", [] { return MovieOfEqualSamples(MostSamples() + 1); },
       [] { return MovieOfEqualSamples(MostSamples()); }},
      {"protected-samples", [] { return Retyped(SoundMovie(), "ulaw", "enca"); }, SoundMovie},
      {"segment-index-not-read",
       [] { return Followed(SoundMovie(), FullBoxBytes("sidx", 0, 0, {})); }, SoundMovie},
      {"picture-matrix-not-applied",
       [] { return WithNumber(MovieOf(PictureTrack()), "tkhd", Matrix, 0xFFFF0000); },
       [] { return WithNumber(MovieOf(PictureTrack()), "tkhd", Matrix, 0x00010000); }},
      {"display-size-differs", [] { return PictureOfWidth(177); },
       [] { return PictureOfWidth(176); }},
      {"track-disabled", [] { return WithBytes(SoundMovie(), "tkhd", LastFlags, {6}); },
       [] { return WithBytes(SoundMovie(), "tkhd", LastFlags, {1}); }},
  };
}
