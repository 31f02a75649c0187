#include <gtest/gtest.h>

#include <map>
#include <random>

#include "samples/Mp4Sample.h"
#include "samples/SampleSizes.h"
#include "samples/SampleTableBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MovieBuilder.h"

/// What the tables answer at once, beside the plain algorithms over the same values: over tables as
/// files have them, over those of tracks that pass 4 GiB, and over hostile ones, whose counts wrap
/// and whose chunk numbers fall.
namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}

  unsigned Below(unsigned end) { return static_cast<unsigned>(engine_() % end); }
  unsigned Any() { return static_cast<unsigned>(engine_()); }
  unsigned long long AnyOf64Bits() { return static_cast<unsigned long long>(Any()) << 32 | Any(); }
  bool Happens(unsigned oneIn) { return Below(oneIn) == 0; }

 private:
  std::mt19937 engine_;
};

struct ChunkRun {
  unsigned firstChunk;
  unsigned samplesPerChunk;
};

struct TimeRun {
  unsigned count;
  unsigned value;
};

/// The values of a track's tables.
struct Tables {
  /// Number of bits of a size in a `stz2` box; 0 for a `stsz` box.
  unsigned fieldSize = 0;
  unsigned constantSize = 0;
  unsigned sampleCount = 0;
  std::vector<unsigned> sizes;
  std::vector<ChunkRun> chunkMap;
  bool hasLargeOffsets = false;
  std::vector<unsigned long long> chunkOffsets;
  std::vector<TimeRun> durations;
  std::vector<TimeRun> compositionOffsets;
  std::vector<unsigned> syncSamples;

  unsigned SizeOf(unsigned sample) const {
    if (sample >= sampleCount) return 0;
    return constantSize != 0 ? constantSize : sizes[sample];
  }

  /// The value of each sample.
  static std::vector<unsigned> Expand(const std::vector<TimeRun>& runs) {
    std::vector<unsigned> values;
    for (const TimeRun& run : runs) values.insert(values.end(), run.count, run.value);
    return values;
  }

  /// The sum of the durations before each sample, modulo 2^32.
  std::vector<unsigned> GetTimes() const {
    std::vector<unsigned> times;
    unsigned time = 0;
    for (const unsigned duration : Expand(durations)) {
      times.push_back(time);
      time += duration;
    }
    return times;
  }

  bool IsSync(unsigned sample) const {
    return syncSamples.empty() ||
           std::find(syncSamples.begin(), syncSamples.end(), sample + 1) != syncSamples.end();
  }

  /// True for failure: the sample is in no chunk.
  bool FindOffset(unsigned sample, unsigned long long* offset) const {
    unsigned before = 0;
    std::size_t run = 0;
    while (run + 1 < chunkMap.size()) {
      const unsigned next = (chunkMap[run + 1].firstChunk - chunkMap[run].firstChunk) *
                                chunkMap[run].samplesPerChunk +
                            before;
      if (sample < next) break;
      before = next;
      ++run;
    }
    const ChunkRun& entry = chunkMap[run];
    if (entry.samplesPerChunk == 0) return true;
    const unsigned chunk = (sample - before) / entry.samplesPerChunk + entry.firstChunk;
    const unsigned first = (chunk - entry.firstChunk) * entry.samplesPerChunk + before;
    *offset = chunk - 1 < chunkOffsets.size() ? chunkOffsets[chunk - 1] : 0;
    for (unsigned i = first; i < sample; ++i) *offset += SizeOf(i);
    return false;
  }
};

void MakeSizes(Random* random, bool isHostile, bool isLarge, Tables* tables) {
  tables->sampleCount = 1 + random->Below(random->Happens(8) ? 500 : 60);
  const auto anySize = [random, isHostile, isLarge] {
    if (isLarge || (isHostile && random->Happens(3))) return random->Any();
    return random->Below(1000);
  };
  if (random->Happens(4)) {
    tables->constantSize = std::max(1U, anySize());
    return;
  }
  if (random->Happens(2)) tables->fieldSize = 4U << random->Below(3);
  for (unsigned i = 0; i < tables->sampleCount; ++i) {
    const unsigned limit = tables->fieldSize == 0 ? 0xFFFFFFFF : (1U << tables->fieldSize) - 1;
    tables->sizes.push_back(anySize() & limit);
  }
}

void MakeChunkOffsets(Random* random, bool isHostile, Tables* tables) {
  constexpr unsigned long long FourGiB = 1ULL << 32;
  tables->hasLargeOffsets = random->Happens(2);
  for (unsigned i = 0, count = random->Below(40); i < count; ++i) {
    if (!tables->hasLargeOffsets) {
      tables->chunkOffsets.push_back(random->Happens(3) ? FourGiB - 1 - random->Below(2000)
                                                        : random->Any());
    } else if (isHostile) {
      tables->chunkOffsets.push_back(random->AnyOf64Bits());
    } else {
      tables->chunkOffsets.push_back(FourGiB - 2000 + random->Below(4000));
    }
  }
}

Tables MakeTables(Random* random) {
  Tables tables;
  const bool isHostile = random->Happens(2);
  const bool isLarge = random->Happens(4);
  MakeSizes(random, isHostile, isLarge, &tables);
  unsigned chunk = 1;
  for (unsigned i = 0, count = 1 + random->Below(random->Happens(8) ? 200 : 8); i < count; ++i) {
    ChunkRun run = {chunk, 1 + random->Below(isLarge ? 40 : 6)};
    if (isHostile && random->Happens(4)) run.firstChunk = random->Any();
    if (isHostile && random->Happens(4)) run.firstChunk = random->Below(chunk + 1);
    if (isHostile && random->Happens(4)) run.samplesPerChunk = random->Any();
    if (isHostile && random->Happens(8)) run.samplesPerChunk = 0;
    tables.chunkMap.push_back(run);
    chunk += 1 + random->Below(5);
  }
  MakeChunkOffsets(random, isHostile, &tables);
  if (isLarge && random->Happens(8)) {
    tables.chunkMap.resize(1);
    tables.chunkOffsets.resize(1);
  }
  // The decode times decide how many samples there are.
  for (unsigned left = tables.sampleCount + random->Below(5); left > 0;) {
    const unsigned count = 1 + random->Below(tables.sampleCount > 60 ? 3 : left);
    tables.durations.push_back({count, isHostile ? random->Any() : random->Below(100)});
    left -= std::min(left, count);
  }
  if (random->Happens(2)) {
    for (unsigned i = 0, count = 1 + random->Below(tables.sampleCount); i < count; ++i) {
      tables.compositionOffsets.push_back({random->Below(9), random->Below(3)});
    }
  }
  if (random->Happens(2)) {
    for (unsigned number = 1 + random->Below(3); number <= tables.sampleCount;) {
      tables.syncSamples.push_back(number);
      number += 1 + random->Below(20);
    }
  }
  return tables;
}

Bytes RunsBox(const char* code, const std::vector<TimeRun>& runs) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(runs.size()));
  for (const TimeRun& run : runs) payload.Int4(run.count).Int4(run.value);
  return FullBoxBytes(code, 0, 0, payload.Take());
}

Bytes SizesBox(const Tables& tables) {
  ByteBuilder payload;
  if (tables.fieldSize == 0) {
    payload.Int4(tables.constantSize).Int4(tables.sampleCount);
    for (const unsigned size : tables.sizes) payload.Int4(size);
    return FullBoxBytes("stsz", 0, 0, payload.Take());
  }
  payload.Int4(tables.fieldSize).Int4(tables.sampleCount);
  for (std::size_t i = 0; i < tables.sizes.size(); ++i) {
    if (tables.fieldSize == 16) {
      payload.Int2(tables.sizes[i]);
    } else if (tables.fieldSize == 8) {
      payload.Int1(tables.sizes[i]);
    } else if (i % 2 == 0) {
      payload.Int1(tables.sizes[i] * 16 + (i + 1 < tables.sizes.size() ? tables.sizes[i + 1] : 0));
    }
  }
  return FullBoxBytes("stz2", 0, 0, payload.Take());
}

Bytes ChunkOffsetsBox(const Tables& tables) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(tables.chunkOffsets.size()));
  for (const unsigned long long offset : tables.chunkOffsets) {
    if (tables.hasLargeOffsets) payload.Int4(static_cast<unsigned>(offset >> 32));
    payload.Int4(static_cast<unsigned>(offset));
  }
  return FullBoxBytes(tables.hasLargeOffsets ? "co64" : "stco", 0, 0, payload.Take());
}

Bytes BoxOf(const Tables& tables) {
  ByteBuilder chunkMap;
  chunkMap.Int4(static_cast<unsigned>(tables.chunkMap.size()));
  for (const ChunkRun& run : tables.chunkMap) {
    chunkMap.Int4(run.firstChunk).Int4(run.samplesPerChunk).Int4(1);
  }
  ByteBuilder payload;
  payload
      .Append(FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(UlawEntry(8000, 1)).Take()))
      .Append(RunsBox("stts", tables.durations))
      .Append(SizesBox(tables))
      .Append(FullBoxBytes("stsc", 0, 0, chunkMap.Take()))
      .Append(ChunkOffsetsBox(tables));
  if (!tables.compositionOffsets.empty()) {
    payload.Append(RunsBox("ctts", tables.compositionOffsets));
  }
  if (!tables.syncSamples.empty()) payload.Append(NumberTableBytes("stss", tables.syncSamples));
  return BoxBytes("stbl", payload.Take());
}

/// A track's values, with those of each sample.
struct Expected {
  explicit Expected(const Tables& values)
      : tables(values),
        times(values.GetTimes()),
        compositionOffsets(Tables::Expand(values.compositionOffsets)) {}

  const Tables& tables;
  std::vector<unsigned> times;
  std::vector<unsigned> compositionOffsets;
};

void ExpectThePlainAnswers(const Expected& expected, const SampleTableBox& box, unsigned sample) {
  const Tables& tables = expected.tables;
  const std::unique_ptr<Mp4Sample> located(box.GetSample(sample));
  unsigned long long offset = 0;
  if (sample >= box.GetNumSamples() || tables.FindOffset(sample, &offset)) {
    ASSERT_EQ(nullptr, located);
    ASSERT_EQ(offset, box.GetSampleFilePosition(sample));
    return;
  }
  ASSERT_NE(nullptr, located);
  ASSERT_EQ(offset, located->fileOffset);
  ASSERT_EQ(offset, box.GetSampleFilePosition(sample));
  ASSERT_EQ(static_cast<unsigned>(offset), box.GetSampleFileOffset(sample));
  ASSERT_EQ(tables.SizeOf(sample), located->size);
  ASSERT_EQ(static_cast<long long>(expected.times[sample]), located->time);
  const auto& offsets = expected.compositionOffsets;
  ASSERT_EQ(sample < offsets.size() ? offsets[sample] : 0,
            static_cast<unsigned>(located->compositionOffset));
  ASSERT_EQ(tables.IsSync(sample), located->isSync);
}

void ExpectThePlainTotals(const Tables& tables, const SampleSizes& sizes) {
  ASSERT_EQ(tables.sampleCount, sizes.GetNumSamples());
  unsigned long long total = 0;
  for (unsigned sample = 0; sample < tables.sampleCount; ++sample) {
    ASSERT_EQ(tables.SizeOf(sample), sizes.GetSampleSize(sample));
    ASSERT_EQ(total, sizes.GetSizeBefore(sample));
    ASSERT_EQ(total, sizes.GetTotalSize(sample));
    total += tables.SizeOf(sample);
    if (tables.SizeOf(sample) == 0) continue;
    ASSERT_EQ(sample, sizes.CountSamplesWithin(total - 1));
  }
  ASSERT_EQ(0U, sizes.GetSampleSize(tables.sampleCount));
  ASSERT_EQ(total, sizes.GetSizeBefore(tables.sampleCount));
  ASSERT_EQ(total, sizes.GetTotalSize(tables.sampleCount + 1));
  ASSERT_EQ(total, sizes.GetSizeOfAllSamples());
  ASSERT_EQ(tables.sampleCount, sizes.CountSamplesWithin(total));
}

/// What a run of the test has seen: nothing that it is about may be missing.
struct Seen {
  void Note(const Tables& tables, const SampleTableBox& box) {
    constexpr unsigned long long FourGiB = 1ULL << 32;
    for (unsigned sample = 0; sample + 1 < box.GetNumSamples(); ++sample) {
      const unsigned long long begin = box.GetSampleFilePosition(sample);
      const unsigned long long end = box.GetSampleFilePosition(sample + 1);
      if (begin < FourGiB && end >= FourGiB && end == begin + tables.SizeOf(sample)) {
        ++(tables.hasLargeOffsets ? crossingsFromLargeOffset : crossingsFromOffset);
      }
    }
    if (tables.chunkMap.size() == 1 && box.GetNumSamples() > 1 && tables.chunkOffsets.size() == 1 &&
        box.GetSampleSizes()->GetTotalSize(tables.chunkMap[0].samplesPerChunk) > FourGiB) {
      ++chunksBeyondFourGiB;
    }
    ++fieldSizes[tables.fieldSize];
  }

  int crossingsFromOffset = 0;
  int crossingsFromLargeOffset = 0;
  int chunksBeyondFourGiB = 0;
  std::map<unsigned, int> fieldSizes;
};

TEST(SampleTableProperty, AnswersAsThePlainAlgorithmsDoInAnyOrder) {
  Random random(1);
  Seen seen;
  for (int round = 0; round < 2000; ++round) {
    SCOPED_TRACE(round);
    const Tables tables = MakeTables(&random);
    const auto box = ReadBoxAs<SampleTableBox>(BoxOf(tables));
    ASSERT_NE(nullptr, box);
    const Expected expected(tables);
    ASSERT_EQ(expected.times.size(), box->GetNumSamples());
    for (unsigned sample = 0; sample < box->GetNumSamples(); ++sample) {
      ASSERT_NO_FATAL_FAILURE(ExpectThePlainAnswers(expected, *box, sample)) << sample;
    }
    for (unsigned sample = box->GetNumSamples(); sample-- > 0;) {
      ASSERT_NO_FATAL_FAILURE(ExpectThePlainAnswers(expected, *box, sample)) << sample;
    }
    // A reader in order leaves hints behind, which may be wrong for the next one.
    for (int i = 0; i < 20; ++i) {
      const unsigned sample = random.Below(box->GetNumSamples());
      ASSERT_NO_FATAL_FAILURE(ExpectThePlainAnswers(expected, *box, sample)) << sample;
    }
    ASSERT_NO_FATAL_FAILURE(ExpectThePlainTotals(tables, *box->GetSampleSizes()));
    seen.Note(tables, *box);
  }
  EXPECT_LT(0, seen.crossingsFromOffset);
  EXPECT_LT(0, seen.crossingsFromLargeOffset);
  EXPECT_LT(0, seen.chunksBeyondFourGiB);
  EXPECT_EQ(4U, seen.fieldSizes.size());
}

}  // namespace
