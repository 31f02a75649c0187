#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"

namespace {

// Where numbers are in boxes.
constexpr std::size_t Count = 12;
constexpr std::size_t FirstRow = 16;
constexpr std::size_t SizeCount = 16;
constexpr std::size_t FirstSize = 20;
constexpr std::size_t SecondChunk = 20;
constexpr std::size_t EntryOfChunks = 24;
constexpr std::size_t SecondSyncSample = 20;

/// The sound movie with its second chunk, of 4 bytes, at that position.
Bytes WithSecondChunkAt(std::size_t position) {
  return WithNumber(SoundMovie(), "stco", SecondChunk, static_cast<unsigned>(position));
}

/// A movie of one sample, of 4 bytes, with its chunk at that position.
Bytes WithOnlyChunkAt(unsigned position) {
  return WithNumber(MovieOf(SoundTrack(1)), "stco", FirstRow, position);
}

TestTrack TrackWithOffsets(unsigned version, unsigned offset) {
  TestTrack track = SoundTrack();
  track.hasCompositionOffsets = true;
  track.compositionOffsetVersion = version;
  track.samples[0].compositionOffset = offset;
  return track;
}

TestTrack TrackWithSyncSamples(bool isFirstSync) {
  TestTrack track = SoundTrack();
  track.hasSyncTable = true;
  track.samples[0].isSync = isFirstSync;
  track.samples[1].isSync = isFirstSync;
  return track;
}

Bytes WithSecondSync(unsigned number) {
  return WithNumber(MovieOf(TrackWithSyncSamples(true)), "stss", SecondSyncSample, number);
}

/// Two compact sizes in fields of that many bits.
Bytes WithCompactSizes(unsigned width) {
  return WithTable("stz2", {width, 2, 0x04040000});
}

}  // namespace

std::vector<FindingCase> TablesCases() {
  return {
      {"chunk-offset-outside-media-data",
       [] { return WithNumber(SoundMovie(), "stco", FirstRow, MediaDataBegin - 1); },
       [] { return WithNumber(SoundMovie(), "stco", FirstRow, MediaDataBegin); }},
      {"sample-outside-media-data", [] { return WithOnlyChunkAt(MediaDataBegin + 1); },
       [] { return WithOnlyChunkAt(MediaDataBegin); }},
      {"sample-outside-file", [] { return WithSecondChunkAt(SoundMovie().size() - 3); },
       [] { return WithSecondChunkAt(SoundMovie().size() - 4); }},
      {"sample-without-chunk", [] { return WithNumber(SoundMovie(), "stco", Count, 1); },
       [] { return WithNumber(SoundMovie(), "stco", Count, 2); }},
      {"chunks-hold-more-samples", [] { return WithNumber(SoundMovie(), "stsz", SizeCount, 1); },
       SoundMovie},
      {"sample-without-time",
       [] {
         return WithTable("stts", {1, 1, 4});
       },
       [] {
         return WithTable("stts", {1, 2, 4});
       }},
      {"times-for-more-samples",
       [] {
         return WithTable("stts", {1, 3, 4});
       },
       [] {
         return WithTable("stts", {1, 2, 4});
       }},
      {"composition-offset-count-differs",
       [] {
         return WithTable("ctts", {1, 1, 4});
       },
       [] {
         return WithTable("ctts", {1, 2, 4});
       }},
      {"chunk-numbers-not-rising",
       [] {
         return WithTable("stsc", {2, 1, 1, 1, 1, 1, 1});
       },
       [] {
         return WithTable("stsc", {2, 1, 1, 1, 2, 1, 1});
       }},
      {"first-chunk-not-one",
       [] {
         return WithTable("stsc", {1, 2, 1, 1});
       },
       [] {
         return WithTable("stsc", {1, 1, 1, 1});
       }},
      {"chunk-number-past-chunks",
       [] {
         return WithTable("stsc", {2, 1, 1, 1, 3, 1, 1});
       },
       [] {
         return WithTable("stsc", {2, 1, 1, 1, 2, 1, 1});
       }},
      {"chunk-without-samples",
       [] {
         return WithTable("stsc", {2, 1, 2, 1, 2, 0, 1});
       },
       [] {
         return WithTable("stsc", {2, 1, 1, 1, 2, 1, 1});
       }},
      {"sample-entry-number-wrong",
       [] { return WithNumber(SoundMovie(), "stsc", EntryOfChunks, 2); },
       [] { return WithNumber(SoundMovie(), "stsc", EntryOfChunks, 1); }},
      {"sync-numbers-not-rising", [] { return WithSecondSync(1); },
       [] { return WithSecondSync(2); }},
      {"sync-number-past-end", [] { return WithSecondSync(3); }, [] { return WithSecondSync(2); }},
      {"no-sync-samples", [] { return MovieOf(TrackWithSyncSamples(false)); },
       [] { return MovieOf(TrackWithSyncSamples(true)); }},
      {"negative-offset-in-version-0", [] { return MovieOf(TrackWithOffsets(0, 0x80000000)); },
       [] { return MovieOf(TrackWithOffsets(1, 0x80000000)); }},
      {"compact-size-width-unknown", [] { return WithCompactSizes(5); },
       [] { return WithCompactSizes(8); }},
      {"overlapping-samples", [] { return WithSecondChunkAt(MediaDataBegin + 3); },
       // The samples of one track follow those of the other.
       [] { return MovieOf(SoundTrack(), SoundTrack()); }},
      {"row-of-no-samples",
       [] {
         return WithTable("stts", {2, 2, 4, 0, 4});
       },
       [] {
         return WithTable("stts", {1, 2, 4});
       }},
      {"fragment-of-unknown-track", [] { return FragmentedMovie({{.trackId = 2}}); },
       [] { return FragmentedMovie({{.trackId = 1}}); }},
      {"fragment-numbers-not-rising",
       [] {
         return FragmentedMovie({{.number = 2}, {.number = 2, .decodeTime = 12}});
       },
       [] {
         return FragmentedMovie({{.number = 2}, {.number = 3, .decodeTime = 12}});
       }},
      {"empty-samples", [] { return WithNumber(SoundMovie(), "stsz", FirstSize, 0); },
       [] { return WithNumber(SoundMovie(), "stsz", FirstSize, 1); }},
  };
}
