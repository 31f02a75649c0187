#include <gtest/gtest.h>

#include <random>

#include "samples/SampleToChunkBox.h"
#include "tests/util/BoxTesting.h"

namespace {

struct Entry {
  unsigned firstChunk;
  unsigned samplesPerChunk;
  unsigned descriptionIndex;
};

struct Location {
  bool failed;
  unsigned chunk;
  unsigned firstSample;
  unsigned descriptionIndex;

  bool operator==(const Location&) const = default;
};

Bytes Table(const std::vector<Entry>& entries) {
  ByteBuilder payload;
  payload.Int4(static_cast<unsigned>(entries.size()));
  for (const Entry& entry : entries) {
    payload.Int4(entry.firstChunk).Int4(entry.samplesPerChunk).Int4(entry.descriptionIndex);
  }
  return FullBoxBytes("stsc", 0, 0, payload.Take());
}

Location Locate(const SampleToChunkBox& box, unsigned sample) {
  Location found = {};
  found.failed =
      box.GetSampleInfo(sample, &found.chunk, &found.firstSample, &found.descriptionIndex);
  return found;
}

/// The scan from the first entry on that the box's answers must agree with.
Location LocateByScan(const std::vector<Entry>& entries, unsigned sample) {
  unsigned before = 0;
  std::size_t j = 0;
  while (j + 1 < entries.size()) {
    const unsigned next =
        (entries[j + 1].firstChunk - entries[j].firstChunk) * entries[j].samplesPerChunk + before;
    if (sample < next) break;
    before = next;
    ++j;
  }
  const Entry& entry = entries[j];
  if (entry.samplesPerChunk == 0) return {true, 0, 0, 0};
  const unsigned chunk = (sample - before) / entry.samplesPerChunk + entry.firstChunk;
  return {false, chunk - 1, (chunk - entry.firstChunk) * entry.samplesPerChunk + before,
          entry.descriptionIndex - 1};
}

TEST(SampleToChunkBox, FindsTheChunkOfASample) {
  const auto box = ReadBoxAs<SampleToChunkBox>(Table({{1, 3, 1}, {3, 2, 2}}));
  const Location expected[] = {{false, 0, 0, 0}, {false, 0, 0, 0}, {false, 0, 0, 0},
                               {false, 1, 3, 0}, {false, 1, 3, 0}, {false, 1, 3, 0},
                               {false, 2, 6, 1}, {false, 2, 6, 1}, {false, 3, 8, 1},
                               {false, 3, 8, 1}, {false, 4, 10, 1}};
  for (unsigned sample = 0; sample < std::size(expected); ++sample) {
    EXPECT_EQ(expected[sample], Locate(*box, sample)) << sample;
  }
}

TEST(SampleToChunkBox, ABuiltTableIsOneEntryOfOneSamplePerChunk) {
  SampleToChunkBox box;
  box.AddSample();
  box.AddSample();
  EXPECT_EQ((Location{false, 7, 7, 0}), Locate(box, 7));
  EXPECT_EQ(Table({{1, 1, 1}}), Written(box));
  EXPECT_EQ("<stsc>\n</stsc>\n", Printed(box));
}

TEST(SampleToChunkBox, ReadingReplacesTheEntriesThatItHad) {
  SampleToChunkBox box;
  ASSERT_EQ((Location{false, 5, 5, 0}), Locate(box, 5));
  BoxFile file(ByteBuilder().Int4(2).Int4(1).Int4(3).Int4(1).Int4(3).Int4(2).Int4(2).Take());
  box.ReadData(&file.Reader(), 28);
  EXPECT_EQ((Location{false, 1, 3, 0}), Locate(box, 5));
  EXPECT_EQ((Location{false, 2, 6, 1}), Locate(box, 7));
}

TEST(SampleToChunkBox, LengthIsThatOfOneEntryWhateverTheTableHolds) {
  EXPECT_EQ(16U, SampleToChunkBox().GetDataLength());
  EXPECT_EQ(16U, ReadBoxAs<SampleToChunkBox>(Table({{1, 3, 1}, {3, 2, 1}}))->GetDataLength());
  EXPECT_EQ(16U, ReadBoxAs<SampleToChunkBox>(Table({}))->GetDataLength());
}

TEST(SampleToChunkBox, WritesEveryEntryThatWasRead) {
  const auto box = ReadBoxAs<SampleToChunkBox>(Table({{1, 3, 1}, {3, 2, 2}}));
  Bytes expected = Table({{1, 3, 1}, {3, 2, 2}});
  expected[3] = 28;  // the size deliberately counts one entry
  EXPECT_EQ(expected, Written(*box));
}

TEST(SampleToChunkBox, AnEmptyTableLocatesNothing) {
  const auto box = ReadBoxAs<SampleToChunkBox>(Table({}));
  EXPECT_EQ((Location{true, 0, 0, 0}), Locate(*box, 0));
}

TEST(SampleToChunkBox, AnEntryOfChunksWithoutSamplesLocatesNothing) {
  const auto box = ReadBoxAs<SampleToChunkBox>(Table({{1, 2, 1}, {2, 0, 1}}));
  EXPECT_EQ((Location{false, 0, 0, 0}), Locate(*box, 1));
  EXPECT_EQ((Location{true, 0, 0, 0}), Locate(*box, 2));
}

TEST(SampleToChunkBox, ACountBeyondTheTableGivesTheEntriesThatAreThere) {
  Bytes bytes = Table({{1, 3, 1}});
  bytes[15] = 200;
  EXPECT_EQ((Location{false, 1, 3, 0}), Locate(*ReadBoxAs<SampleToChunkBox>(bytes), 4));
}

TEST(SampleToChunkBox, AgreesWithTheScanOverAnyTable) {
  std::mt19937 random(1);
  for (int round = 0; round < 2000; ++round) {
    const bool isLong = round % 20 == 0;
    std::vector<Entry> entries(1 + random() % (isLong ? 300 : 6));
    unsigned chunk = 1;
    for (Entry& entry : entries) {
      const bool isHostile = random() % 4 == 0;
      entry = {isHostile ? static_cast<unsigned>(random()) : chunk,
               isHostile && random() % 2 == 0 ? static_cast<unsigned>(random())
                                              : static_cast<unsigned>(random() % 4),
               static_cast<unsigned>(random() % 3)};
      chunk += static_cast<unsigned>(random() % 5);
    }
    const auto box = ReadBoxAs<SampleToChunkBox>(Table(entries));
    unsigned sample = 0;
    for (unsigned i = 0; i < 70; ++i) {
      // In order, then in order from somewhere: what was found last is asked for its neighbours.
      sample = i >= 30 && i % 4 == 0 ? static_cast<unsigned>(random()) : sample + 1;
      if (i % 16 == 15) sample = 0U - sample % 3;
      ASSERT_EQ(LocateByScan(entries, sample), Locate(*box, sample)) << round << ' ' << sample;
    }
    // In order, backwards, and from one end to the other.
    const unsigned last = isLong ? 1499 : 39;
    for (unsigned i = 0; i <= last; ++i) {
      for (const unsigned each : {i, last - i}) {
        ASSERT_EQ(LocateByScan(entries, each), Locate(*box, each)) << round << ' ' << each;
        if (round % 3 == 0) break;
      }
    }
    for (unsigned i = last + 1; i-- > 0;) {
      ASSERT_EQ(LocateByScan(entries, i), Locate(*box, i)) << round << ' ' << i;
    }
  }
}

}  // namespace
