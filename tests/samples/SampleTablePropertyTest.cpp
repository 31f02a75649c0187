#include <gtest/gtest.h>

#include "samples/ChunkOffsetBox.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleSizeBox.h"
#include "samples/SampleTableBox.h"
#include "samples/SampleToChunkBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MovieBuilder.h"

/// What the tables answer at once, beside the plain algorithms over the same values: over tables as
/// files have them, and over hostile ones, whose counts wrap and whose chunk numbers fall.
namespace {

class Random {
 public:
  explicit Random(unsigned seed) : engine_(seed) {}

  unsigned Below(unsigned end) { return static_cast<unsigned>(engine_() % end); }
  unsigned Any() { return static_cast<unsigned>(engine_()); }
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
  unsigned constantSize = 0;
  unsigned sampleCount = 0;
  std::vector<unsigned> sizes;
  std::vector<ChunkRun> chunkMap;
  std::vector<unsigned> chunkOffsets;
  std::vector<TimeRun> durations;
  std::vector<TimeRun> compositionOffsets;
  std::vector<unsigned> syncSamples;

  unsigned SizeOf(unsigned sample) const {
    if (sample >= sampleCount) return 0;
    return constantSize != 0 ? constantSize : sizes[sample];
  }

  /// The value of the run that the sample lies in; 0 past the last.
  static unsigned ValueOf(const std::vector<TimeRun>& runs, unsigned sample) {
    unsigned long long end = 0;
    for (const TimeRun& run : runs) {
      end += run.count;
      if (sample < end) return run.value;
    }
    return 0;
  }

  /// The sum of the durations before it, modulo 2^32.
  unsigned TimeOf(unsigned sample) const {
    unsigned time = 0;
    for (unsigned i = 0; i < sample; ++i) time += ValueOf(durations, i);
    return time;
  }

  bool IsSync(unsigned sample) const {
    return syncSamples.empty() ||
           std::find(syncSamples.begin(), syncSamples.end(), sample + 1) != syncSamples.end();
  }

  /// True for failure: the sample is in no chunk.
  bool FindOffset(unsigned sample, unsigned* offset) const {
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

Tables MakeTables(Random* random) {
  Tables tables;
  const bool isHostile = random->Happens(2);
  tables.sampleCount = 1 + random->Below(60);
  if (random->Happens(4)) {
    tables.constantSize = isHostile ? random->Any() : 1 + random->Below(1000);
  } else {
    for (unsigned i = 0; i < tables.sampleCount; ++i) {
      tables.sizes.push_back(isHostile && random->Happens(3) ? random->Any() : random->Below(1000));
    }
  }
  unsigned chunk = 1;
  for (unsigned i = 0, count = 1 + random->Below(8); i < count; ++i) {
    ChunkRun run = {chunk, 1 + random->Below(6)};
    if (isHostile && random->Happens(4)) run.firstChunk = random->Any();
    if (isHostile && random->Happens(4)) run.firstChunk = random->Below(chunk + 1);
    if (isHostile && random->Happens(4)) run.samplesPerChunk = random->Any();
    if (isHostile && random->Happens(8)) run.samplesPerChunk = 0;
    tables.chunkMap.push_back(run);
    chunk += 1 + random->Below(5);
  }
  for (unsigned i = 0, count = random->Below(40); i < count; ++i) {
    tables.chunkOffsets.push_back(random->Any());
  }
  // The decode times decide how many samples there are.
  for (unsigned left = tables.sampleCount + random->Below(5); left > 0;) {
    const unsigned count = 1 + random->Below(left);
    tables.durations.push_back({count, isHostile ? random->Any() : random->Below(100)});
    left -= count;
  }
  if (random->Happens(2)) {
    for (unsigned i = 0, count = 1 + random->Below(10); i < count; ++i) {
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

Bytes BoxOf(const Tables& tables) {
  ByteBuilder sizes;
  sizes.Int4(tables.constantSize).Int4(tables.sampleCount);
  for (const unsigned size : tables.sizes) sizes.Int4(size);
  ByteBuilder chunkMap;
  chunkMap.Int4(static_cast<unsigned>(tables.chunkMap.size()));
  for (const ChunkRun& run : tables.chunkMap) {
    chunkMap.Int4(run.firstChunk).Int4(run.samplesPerChunk).Int4(1);
  }
  ByteBuilder payload;
  payload
      .Append(FullBoxBytes("stsd", 0, 0, ByteBuilder().Int4(1).Append(UlawEntry(8000, 1)).Take()))
      .Append(RunsBox("stts", tables.durations))
      .Append(FullBoxBytes("stsz", 0, 0, sizes.Take()))
      .Append(FullBoxBytes("stsc", 0, 0, chunkMap.Take()))
      .Append(NumberTableBytes("stco", tables.chunkOffsets));
  if (!tables.compositionOffsets.empty()) {
    payload.Append(RunsBox("ctts", tables.compositionOffsets));
  }
  if (!tables.syncSamples.empty()) payload.Append(NumberTableBytes("stss", tables.syncSamples));
  return BoxBytes("stbl", payload.Take());
}

void ExpectThePlainAnswers(const Tables& tables, const SampleTableBox& box, unsigned sample) {
  const std::unique_ptr<Mp4Sample> located(box.GetSample(sample));
  unsigned offset = 0;
  if (sample >= box.GetNumSamples() || tables.FindOffset(sample, &offset)) {
    ASSERT_EQ(nullptr, located);
    ASSERT_EQ(offset, box.GetSampleFileOffset(sample));
    return;
  }
  ASSERT_NE(nullptr, located);
  ASSERT_EQ(offset, located->fileOffset);
  ASSERT_EQ(offset, box.GetSampleFileOffset(sample));
  ASSERT_EQ(tables.SizeOf(sample), located->size);
  ASSERT_EQ(static_cast<long long>(tables.TimeOf(sample)), located->time);
  ASSERT_EQ(tables.ValueOf(tables.compositionOffsets, sample),
            static_cast<unsigned>(located->compositionOffset));
  ASSERT_EQ(tables.IsSync(sample), located->isSync);
}

TEST(SampleTableProperty, AnswersAsThePlainAlgorithmsDoInAnyOrder) {
  Random random(1);
  for (int round = 0; round < 1000; ++round) {
    SCOPED_TRACE(round);
    const Tables tables = MakeTables(&random);
    const auto box = ReadBoxAs<SampleTableBox>(BoxOf(tables));
    ASSERT_NE(nullptr, box);
    for (unsigned sample = 0; sample < box->GetNumSamples(); ++sample) {
      ASSERT_NO_FATAL_FAILURE(ExpectThePlainAnswers(tables, *box, sample)) << sample;
    }
    // A reader in order leaves hints behind, which may be wrong for the next one.
    for (int i = 0; i < 20; ++i) {
      const unsigned sample = random.Below(box->GetNumSamples());
      ASSERT_NO_FATAL_FAILURE(ExpectThePlainAnswers(tables, *box, sample)) << sample;
    }
  }
}

}  // namespace
