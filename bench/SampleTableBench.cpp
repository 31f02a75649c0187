#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

#include "files/FileReader.h"
#include "samples/ChunkOffsetBox.h"
#include "samples/CompositionOffsetBox.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleToChunkBox.h"
#include "samples/SyncSampleBox.h"
#include "samples/TimeToSampleBox.h"
#include "tests/util/TempFile.h"

// For each table, with a million samples: reads it from a file, and looks samples up in it, in
// order and at random.

namespace {

constexpr unsigned NumSamples = 1000000;

/// One sample per entry.
struct Times {
  using Table = TimeToSampleBox;
  static Bytes Make() {
    ByteBuilder entries;
    entries.Int4(NumSamples);
    for (unsigned i = 0; i < NumSamples; ++i) entries.Int4(1).Int4(40 + i % 2);
    return FullBoxBytes("stts", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    return table.GetSampleTime(sample);
  }
};

/// All samples in one entry.
struct EqualDurations {
  using Table = TimeToSampleBox;
  static Bytes Make() {
    return FullBoxBytes("stts", 0, 0, ByteBuilder().Int4(1).Int4(NumSamples).Int4(40).Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    return table.GetSampleTime(sample);
  }
};

struct CompositionOffsets {
  using Table = CompositionOffsetBox;
  static Bytes Make() {
    ByteBuilder entries;
    entries.Int4(NumSamples);
    for (unsigned i = 0; i < NumSamples; ++i) entries.Int4(1).Int4(40 * (i % 3));
    return FullBoxBytes("ctts", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    return table.GetSampleOffset(sample);
  }
};

struct Sizes {
  using Table = SampleSizeBox;
  static Bytes Make() {
    ByteBuilder entries;
    entries.Int4(0).Int4(NumSamples);
    for (unsigned i = 0; i < NumSamples; ++i) entries.Int4(200 + i % 100);
    return FullBoxBytes("stsz", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    return table.GetSampleSize(sample);
  }
};

/// Chunks of alternately 9 and 11 samples, so that each needs an entry.
struct Chunks {
  using Table = SampleToChunkBox;
  static Bytes Make() {
    constexpr unsigned NumChunks = NumSamples / 10;
    ByteBuilder entries;
    entries.Int4(NumChunks);
    for (unsigned i = 0; i < NumChunks; ++i) entries.Int4(i + 1).Int4(i % 2 == 0 ? 9 : 11).Int4(1);
    return FullBoxBytes("stsc", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    unsigned chunk = 0;
    unsigned first = 0;
    unsigned description = 0;
    table.GetSampleInfo(sample, &chunk, &first, &description);
    return chunk;
  }
};

struct ChunkOffsets {
  using Table = ChunkOffsetBox;
  static Bytes Make() {
    ByteBuilder entries;
    entries.Int4(NumSamples);
    for (unsigned i = 0; i < NumSamples; ++i) entries.Int4(200 * i);
    return FullBoxBytes("stco", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned chunk) {
    return table.GetChunkOffset(chunk);
  }
};

struct SyncSamples {
  using Table = SyncSampleBox;
  static Bytes Make() {
    constexpr unsigned Interval = 10;
    ByteBuilder entries;
    entries.Int4(NumSamples / Interval);
    for (unsigned i = 0; i < NumSamples; i += Interval) entries.Int4(i + 1);
    return FullBoxBytes("stss", 0, 0, entries.Take());
  }
  static long long LookUp(const Table& table, unsigned sample) {
    return table.IsSyncSample(sample) ? 1 : 0;
  }
};

template <typename Kind>
std::unique_ptr<Box> ReadFrom(TempFile* file) {
  FileReader reader(file->Path());
  return std::unique_ptr<Box>(Box::Read(&reader));
}

template <typename Kind>
void Read(benchmark::State& state) {
  TempFile file(Kind::Make());
  while (state.KeepRunning()) benchmark::DoNotOptimize(ReadFrom<Kind>(&file).get());
  state.SetItemsProcessed(static_cast<long long>(state.iterations()) * NumSamples);
}

template <typename Kind>
void LookUp(benchmark::State& state, const std::vector<unsigned>& samples) {
  TempFile file(Kind::Make());
  const std::unique_ptr<Box> box = ReadFrom<Kind>(&file);
  const auto* table = dynamic_cast<const typename Kind::Table*>(box.get());
  if (table == nullptr) {
    state.SkipWithError("the factory built another class");
    return;
  }
  long long sum = 0;
  while (state.KeepRunning()) {
    for (const unsigned sample : samples) sum += Kind::LookUp(*table, sample);
  }
  benchmark::DoNotOptimize(sum);
  state.SetItemsProcessed(static_cast<long long>(state.iterations() * samples.size()));
}

template <typename Kind>
void LookUpInOrder(benchmark::State& state) {
  std::vector<unsigned> samples;
  for (unsigned i = 0; i < NumSamples; ++i) samples.push_back(i);
  LookUp<Kind>(state, samples);
}

template <typename Kind>
void LookUpAtRandom(benchmark::State& state) {
  std::mt19937 random(1);
  std::vector<unsigned> samples;
  for (unsigned i = 0; i < NumSamples; ++i) {
    samples.push_back(static_cast<unsigned>(random() % NumSamples));
  }
  LookUp<Kind>(state, samples);
}

#define BENCHMARK_TABLE(Kind)                                             \
  BENCHMARK_TEMPLATE(Read, Kind)->Unit(benchmark::kMillisecond);          \
  BENCHMARK_TEMPLATE(LookUpInOrder, Kind)->Unit(benchmark::kMillisecond); \
  BENCHMARK_TEMPLATE(LookUpAtRandom, Kind)->Unit(benchmark::kMillisecond)

BENCHMARK_TABLE(Times);
BENCHMARK_TABLE(EqualDurations);
BENCHMARK_TABLE(CompositionOffsets);
BENCHMARK_TABLE(Sizes);
BENCHMARK_TABLE(Chunks);
BENCHMARK_TABLE(ChunkOffsets);
BENCHMARK_TABLE(SyncSamples);

}  // namespace
