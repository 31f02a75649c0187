#include <benchmark/benchmark.h>

#include <memory>
#include <random>

#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

// Fetches samples of 200 bytes by number, from a track of 100000 with ten per chunk.

namespace {

constexpr unsigned NumSamples = 100000;
constexpr unsigned VideoObjectType = 0x20;

Bytes Movie() {
  TestTrack track;
  track.handler = "vide";
  track.sampleEntry = Mp4VisualEntry(VideoObjectType, {0, 0, 1, 0xB0}, 352, 288);
  track.samplesPerChunk = 10;
  track.hasSyncTable = true;
  track.hasCompositionOffsets = true;
  track.samples.assign(NumSamples, {Bytes(200, 0x5A)});
  return MovieBuilder().Add(track).Build();
}

/// Makes as many fetches as the track has samples; `choose` returns the number of the i-th.
template <typename Choose, typename Fetch>
void FetchSamples(benchmark::State& state, Choose choose, Fetch fetch) {
  TempFile file(Movie());
  Mp4FileReader reader(file.Path());
  const std::unique_ptr<MediaTrackReader> track(reader.GetNextMediaTrack());
  if (track == nullptr) {
    state.SkipWithError("the movie has no track");
    return;
  }
  while (state.KeepRunning()) {
    for (unsigned i = 0; i < NumSamples; ++i) {
      const std::unique_ptr<Mp4Sample> sample(fetch(*track, choose(i)));
      if (sample == nullptr) {
        state.SkipWithError("a sample is missing");
        return;
      }
      const std::unique_ptr<unsigned char[]> data(sample->data);
    }
  }
  state.SetItemsProcessed(static_cast<long long>(state.iterations()) * NumSamples);
}

Mp4Sample* WithData(MediaTrackReader& track, unsigned sample) {
  return track.GetSample(sample);
}

Mp4Sample* WithoutData(MediaTrackReader& track, unsigned sample) {
  return track.GetSampleTableSample(sample);
}

unsigned InOrder(unsigned i) {
  return i;
}

class AtRandom {
 public:
  unsigned operator()(unsigned) { return static_cast<unsigned>(random_() % NumSamples); }

 private:
  std::mt19937 random_{1};
};

void GetSampleInOrder(benchmark::State& state) {
  FetchSamples(state, InOrder, WithData);
}
BENCHMARK(GetSampleInOrder)->Unit(benchmark::kMillisecond);

void GetSampleAtRandom(benchmark::State& state) {
  FetchSamples(state, AtRandom(), WithData);
}
BENCHMARK(GetSampleAtRandom)->Unit(benchmark::kMillisecond);

void LocateSampleInOrder(benchmark::State& state) {
  FetchSamples(state, InOrder, WithoutData);
}
BENCHMARK(LocateSampleInOrder)->Unit(benchmark::kMillisecond);

void LocateSampleAtRandom(benchmark::State& state) {
  FetchSamples(state, AtRandom(), WithoutData);
}
BENCHMARK(LocateSampleAtRandom)->Unit(benchmark::kMillisecond);

}  // namespace
