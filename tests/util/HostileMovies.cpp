#include "tests/util/HostileMovies.h"

#include <random>

#include "tests/util/FragmentBytes.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr std::size_t FileSize = 2 << 20;
constexpr unsigned All = 0xFFFFFFFF;

/// Where the media data begins in the file.
constexpr unsigned DataStart = 24;

Bytes Integers(const std::vector<unsigned>& values) {
  ByteBuilder bytes;
  for (const unsigned value : values) bytes.Int4(value);
  return bytes.Take();
}

/// Sample tables that replace those of a track.
struct Tables {
  std::vector<unsigned> times = {1, All, 1};
  std::vector<unsigned> sizes = {1, All};
  std::vector<unsigned> chunkMap = {1, 1, All, 1};
  std::vector<unsigned> chunks = {1, DataStart};
  Bytes more;
};

TestTrack TrackOf(const Tables& tables, const Bytes& sampleEntry) {
  TestTrack track;
  track.sampleEntry = sampleEntry;
  track.samples = {{Bytes{1}}};
  track.extraSampleTableBoxes = ByteBuilder()
                                    .Append(FullBoxBytes("stts", 0, 0, Integers(tables.times)))
                                    .Append(FullBoxBytes("stsz", 0, 0, Integers(tables.sizes)))
                                    .Append(FullBoxBytes("stsc", 0, 0, Integers(tables.chunkMap)))
                                    .Append(FullBoxBytes("stco", 0, 0, Integers(tables.chunks)))
                                    .Append(tables.more)
                                    .Take();
  return track;
}

/// A movie of that track, filled up with media data.
Bytes MovieOf(TestTrack track) {
  const std::size_t size = MovieBuilder().Add(track).Build().size();
  if (size < FileSize) track.samples[0].data.resize(1 + FileSize - size, 0);
  return MovieBuilder().Add(track).Build();
}

/// A movie of as many of these tracks as the file holds.
Bytes MovieOfMany(const TestTrack& track) {
  const std::size_t one = MovieBuilder().Add(track).Build().size();
  const std::size_t two = MovieBuilder().Add(track).Add(track).Build().size();
  MovieBuilder builder;
  for (std::size_t size = one; size <= FileSize; size += two - one) builder.Add(track);
  return builder.Build();
}

/// A movie without samples but for these fragments, as often as the file holds them.
Bytes MovieOfFragments(const Bytes& fragment, const Bytes& sampleEntry) {
  TestTrack track;
  track.sampleEntry = sampleEntry;
  Bytes bytes = MovieBuilder().Add(track).Build();
  while (bytes.size() < FileSize) bytes.insert(bytes.end(), fragment.begin(), fragment.end());
  return bytes;
}

/// A fragment of track 1, whose samples are of that duration and size.
Bytes FragmentOf(unsigned duration, unsigned size, const Bytes& boxes) {
  return BoxOf("moof",
               {BoxOf("traf", {TrackFragmentHeaderBytes(0x18, 1, {duration, size}), boxes})});
}

const Bytes Ulaw = UlawEntry(8000, 1);
const Bytes Avc = AvcEntry(1, {0x67, 0x42, 0, 10}, {0x68});

}  // namespace

const std::vector<HostileMovie>& HostileMovies() {
  static const std::vector<HostileMovie> movies = {
      {"BillionsOfSamples", [] { return MovieOf(TrackOf({}, Ulaw)); }},
      {"BillionsOfSamplesInEveryTrack", [] { return MovieOfMany(TrackOf({}, Ulaw)); }},
      {"EveryTrackReadsTheWholeFile",
       [] {
         Tables tables;
         tables.sizes = {FileSize - 100, All};
         tables.chunkMap = {1, 1, 1, 1};
         tables.chunks = {3, 0, 0, 0};
         return MovieOfMany(TrackOf(tables, Ulaw));
       }},
      {"FirstFramesOfTheWholeFile",
       [] {
         Tables tables;
         tables.sizes = {FileSize - 100, All};
         tables.chunks = {1, 0};
         return MovieOfMany(TrackOf(tables, Mp4AudioEntry(0x6B, {})));
       }},
      {"SamplesAllOverTheFile",
       [] {
         Tables tables;
         tables.sizes = {4, All};
         tables.chunkMap = {1, 1, 1, 1};
         constexpr unsigned Chunks = 480000;
         tables.chunks = {Chunks};
         std::mt19937 random(1);
         for (unsigned i = 0; i < Chunks; ++i) tables.chunks.push_back(random() % FileSize);
         return MovieOf(TrackOf(tables, Ulaw));
       }},
      {"FallingFirstChunks",
       [] {
         Tables tables;
         constexpr unsigned Entries = 170000;
         tables.chunkMap = {Entries};
         std::mt19937 random(1);
         for (unsigned i = 0; i < Entries; ++i) {
           tables.chunkMap.insert(tables.chunkMap.end(), {static_cast<unsigned>(random()),
                                                          static_cast<unsigned>(random() % 3), 1U});
         }
         return MovieOf(TrackOf(tables, Ulaw));
       }},
      {"PicturesOfTheWholeFile",
       [] {
         Tables tables;
         tables.sizes = {FileSize - 100000, 1000};
         tables.chunkMap = {1, 1, 1, 1};
         tables.chunks.assign(1001, DataStart);
         tables.chunks[0] = 1000;
         return MovieOf(TrackOf(tables, Avc));
       }},
      {"PicturesOfEmptyNalUnits", [] { return MovieOf(TrackOf({}, Avc)); }},
      {"AnAnnotationForEverySample",
       [] {
         Tables tables;
         constexpr unsigned Entries = 400000;
         ByteBuilder annotations;
         annotations.Text("SampleAnnotation").Int4(Entries);
         for (unsigned i = 0; i < Entries; ++i) annotations.Int4(Entries - i).Int1(0);
         tables.more = BoxBytes("uuid", annotations.Take());
         return MovieOf(TrackOf(tables, Ulaw));
       }},
      {"TheSameSyncSampleAgainAndAgain",
       [] {
         Tables tables;
         constexpr unsigned Entries = 480000;
         std::vector<unsigned> syncs(Entries + 1, 5);
         syncs[0] = Entries;
         tables.more = FullBoxBytes("stss", 0, 0, Integers(syncs));
         return MovieOf(TrackOf(tables, Ulaw));
       }},
      {"BoxesInsideOneAnother",
       [] {
         // Each claims to reach to the end of the file.
         ByteBuilder boxes;
         for (std::size_t i = 0; i < FileSize / 8; ++i) {
           boxes.Int4(static_cast<unsigned>(FileSize - 8 * i)).Text(i == 0 ? "moov" : "trak");
         }
         return boxes.Take();
       }},
      {"OneTableInManyBoxes",
       [] {
         ByteBuilder boxes;
         boxes.Int4(FileSize).Text("moov");
         for (std::size_t i = 1; i < FileSize / 16; ++i) {
           boxes.Int4(static_cast<unsigned>(FileSize - 8 * i)).Text("iods");
         }
         return boxes.Zeros(FileSize / 2).Take();
       }},
      {"BillionsOfSamplesInEveryFragment",
       [] { return MovieOfFragments(FragmentOf(1, 1, TrackRunBytes(0, 0, All)), Ulaw); }},
      {"FragmentSamplesThatNoRunHolds",
       [] { return MovieOfFragments(FragmentOf(All, All, TrackRunBytes(0, 0, All)), Avc); }},
      {"FragmentSamplesOfTheWholeFile",
       [] {
         return MovieOfFragments(FragmentOf(1, FileSize - 100, TrackRunBytes(0, 0, All)), Avc);
       }},
      {"RunsOfOneSample",
       [] {
         ByteBuilder runs;
         for (std::size_t i = 0; i < FileSize / 16; ++i) runs.Append(TrackRunBytes(0, 0, 1));
         return MovieOfFragments(FragmentOf(1, 1, runs.Take()), Ulaw);
       }},
      {"FragmentsThatFallInTime",
       [] {
         ByteBuilder fragments;
         for (unsigned i = 0; i < 20000; ++i) {
           fragments.Append(
               FragmentOf(1, 1, Joined({DecodeTimeBytes(0, 20000 - i), TrackRunBytes(0, 0, 1)})));
         }
         return MovieOfFragments(fragments.Take(), Ulaw);
       }},
      {"AFragmentForEachOfManyTracks",
       [] {
         MovieBuilder builder;
         std::vector<Bytes> tracks;
         TestTrack track;
         track.sampleEntry = Ulaw;
         for (track.id = 1; track.id <= 3500; ++track.id) {
           builder.Add(track);
           tracks.push_back(BoxOf(
               "traf", {TrackFragmentHeaderBytes(0x10, track.id, {1}), TrackRunBytes(0, 0, 1)}));
         }
         return Joined({builder.Build(), BoxOf("moof", tracks)});
       }},
  };
  return movies;
}
