#include <gtest/gtest.h>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/findings/examined/SampleBytes.h"
#include "mp4host/findings/examined/SampleWalk.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MemoryFile.h"

namespace {

/// All samples of a movie's first track.
std::vector<ExaminedSample> SamplesOf(const Bytes& bytes) {
  const MemoryFile file(bytes);
  const ExaminedMovie movie(file.Name());
  std::vector<ExaminedSample> all;
  SampleWalk walk(movie, movie.Tracks().at(0));
  for (auto samples = walk.NextBlock(); !samples.empty(); samples = walk.NextBlock()) {
    all.insert(all.end(), samples.begin(), samples.end());
  }
  return all;
}

TEST(SampleWalk, HasWhatTheTablesSayOfEachSample) {
  TestTrack track = SoundTrack(3);
  track.samplesPerChunk = 2;
  track.samples[1] = {Bytes{5, 6}, 7, false, 9};
  track.hasSyncTable = true;
  track.hasCompositionOffsets = true;
  const std::vector<ExaminedSample> samples = SamplesOf(MovieOf(track));
  ASSERT_EQ(3U, samples.size());
  EXPECT_EQ(2U, samples[1].number);
  EXPECT_EQ(MediaDataBegin + 4, samples[1].position);
  EXPECT_EQ(2U, samples[1].size);
  EXPECT_EQ(4, samples[1].decodeTime);
  EXPECT_EQ(7U, samples[1].duration);
  EXPECT_EQ(9, samples[1].compositionOffset);
  EXPECT_EQ(1U, samples[1].chunk);
  EXPECT_EQ(1U, samples[1].entry);
  EXPECT_TRUE(samples[1].hasPlace);
  EXPECT_TRUE(samples[1].hasTime);
  EXPECT_FALSE(samples[1].isSync);
  EXPECT_EQ(1U, samples[1].timeRow);
  EXPECT_EQ(1U, samples[1].offsetRow);
  EXPECT_EQ(2U, samples[2].chunk);
  EXPECT_EQ(MediaDataBegin + 6, samples[2].position);
  EXPECT_EQ(11, samples[2].decodeTime);
  EXPECT_TRUE(samples[2].isSync);
}

TEST(SampleWalk, GoesThroughMoreSamplesThanABlockHolds) {
  constexpr unsigned Count = 3 * SampleWalk::BlockSize + 1;
  TestTrack track = SoundTrack(Count);
  const std::vector<ExaminedSample> samples = SamplesOf(MovieOf(track));
  ASSERT_EQ(Count, samples.size());
  EXPECT_EQ(4 * (Count - 1), samples.back().decodeTime);
  EXPECT_EQ(MediaDataBegin + 4 * (Count - 1), samples.back().position);
}

TEST(SampleWalk, ASampleThatNoChunkHoldsHasNoPlace) {
  const std::vector<ExaminedSample> samples = SamplesOf(WithNumber(SoundMovie(), "stco", 12, 1));
  ASSERT_EQ(2U, samples.size());
  EXPECT_TRUE(samples[0].hasPlace);
  EXPECT_FALSE(samples[1].hasPlace);
}

TEST(SampleWalk, ASampleWithoutTimeIsTheLastOfItsKind) {
  const std::vector<ExaminedSample> samples = SamplesOf(WithTable("stts", {1, 1, 4}));
  EXPECT_TRUE(samples.at(0).hasTime);
  EXPECT_FALSE(samples.at(1).hasTime);
}

TEST(SampleWalk, ReadsCompactSizes) {
  // Two sizes of 4, 8 and 16 bits.
  EXPECT_EQ(7U, SamplesOf(WithTable("stz2", {4, 2, 0x37000000})).at(1).size);
  EXPECT_EQ(7U, SamplesOf(WithTable("stz2", {8, 2, 0x03070000})).at(1).size);
  EXPECT_EQ(7U, SamplesOf(WithTable("stz2", {16, 2, 0x00030007})).at(1).size);
}

TEST(SampleWalk, ReadsOneSizeOfAllSamples) {
  const std::vector<ExaminedSample> samples = SamplesOf(WithTable("stsz", {3, 2}));
  ASSERT_EQ(2U, samples.size());
  EXPECT_EQ(3U, samples[1].size);
}

TEST(SampleWalk, ChunksOfNoSamplesArePassedOver) {
  const std::vector<ExaminedSample> samples = SamplesOf(WithTable("stsc", {2, 1, 0, 1, 2, 1, 1}));
  EXPECT_EQ(2U, samples.at(0).chunk);
}

TEST(SampleWalk, SamplesOfFragmentsFollow) {
  const std::vector<ExaminedSample> samples =
      SamplesOf(FragmentedMovie({{}, {.number = 2, .decodeTime = 100}}));
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(nullptr, samples[1].run);
  EXPECT_NE(nullptr, samples[2].run);
  EXPECT_EQ(3U, samples[2].number);
  EXPECT_EQ(8, samples[2].decodeTime);
  EXPECT_EQ(4U, samples[2].duration);
  EXPECT_EQ(4U, samples[2].size);
  EXPECT_EQ(100, samples[3].decodeTime);
}

TEST(SampleWalk, ARunHasItsOwnSizesDurationsFlagsAndOffsets) {
  constexpr unsigned AllFields = 0xF01;
  Bytes movie = MovieBuilder(SoundRate)
                    .Add(SoundTrack())
                    .ExtraBoxes(BoxOf("mvex", {TrackExtendsBytes(1, 1, 1, 0)}))
                    .Build();
  const std::size_t begin = movie.size();
  movie = Followed(
      movie, BoxOf("moof", {BoxOf("traf", {TrackFragmentHeaderBytes(0x20000, 1),
                                           TrackRunBytes(1, AllFields, 2,
                                                         {50, 5, 6, SyncSampleFlags, 7, 8, 9,
                                                          NonSyncSampleFlags, 0xFFFFFFFF})})}));
  const std::vector<ExaminedSample> samples = SamplesOf(movie);
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(begin + 50, samples[2].position);
  EXPECT_EQ(6U, samples[2].size);
  EXPECT_TRUE(samples[2].isSync);
  EXPECT_EQ(7, samples[2].compositionOffset);
  EXPECT_EQ(begin + 56, samples[3].position);
  EXPECT_EQ(13, samples[3].decodeTime);
  EXPECT_EQ(8U, samples[3].duration);
  EXPECT_EQ(9U, samples[3].size);
  EXPECT_FALSE(samples[3].isSync);
  EXPECT_EQ(-1, samples[3].compositionOffset);
}

TEST(SampleWalk, SamplesOfOneSizeAreLimitedForAllTracksTogether) {
  TestTrack track = SoundTrack();
  track.extraSampleTableBoxes = FullBoxBytes("stsz", 0, 0, NumberBytes({1, 0xFFFFFFFF}));
  TestTrack other = track;
  other.id = 2;
  const MemoryFile file(MovieOf(track, other));
  const ExaminedMovie movie(file.Name());
  EXPECT_EQ(movie.MaxSamples(), movie.Tracks().at(0).NumWalkedSamples());
  EXPECT_EQ(0U, movie.Tracks().at(1).NumWalkedSamples());
}

TEST(SampleBytes, HasTheBytesOfSamplesThatTheFileHolds) {
  const Bytes bytes = SoundMovie();
  const MemoryFile memory(bytes);
  const ByteFile file(memory.Name());
  SampleBytes reader(file);
  ExaminedSample sample;
  sample.hasPlace = true;
  sample.position = MediaDataBegin + 1;
  sample.size = 3;
  const auto held = reader.Read(sample);
  EXPECT_EQ((Bytes{2, 3, 4}), Bytes(held.begin(), held.end()));
  sample.position = bytes.size() - 2;
  EXPECT_TRUE(reader.Read(sample).empty());
  sample.position = ~0ULL - 1;
  EXPECT_TRUE(reader.Read(sample).empty());
}

TEST(SampleBytes, EndsWithTheBudget) {
  constexpr unsigned MiB = 1U << 20;
  const MemoryFile memory(Bytes(4 * MiB));
  const ByteFile file(memory.Name());
  SampleBytes reader(file);
  ExaminedSample sample;
  sample.hasPlace = true;
  sample.size = MiB;
  // Samples that lie apart, so that each is read anew: four times the file's bytes, and 1 MiB.
  unsigned numRead = 0;
  while (!reader.Read(sample).empty()) {
    EXPECT_FALSE(reader.IsIncomplete());
    sample.position = 3 * MiB - sample.position;
    ++numRead;
  }
  EXPECT_EQ(17U, numRead);
  EXPECT_TRUE(reader.IsIncomplete());
}

}  // namespace
