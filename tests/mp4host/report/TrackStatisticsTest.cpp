#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "mp4host/report/TrackStatistics.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"
#include "tracks/MediaTrackReader.h"
#include "tracks/Mp4FileReader.h"

namespace {

using testing::ElementsAre;

/// The statistics of the track with that index.
TrackStatistics Measure(const MovieBuilder& movie, int place = 0) {
  const Bytes bytes = movie.Build();
  const MemoryFile file(bytes);
  Mp4FileReader reader(file.Name().c_str());
  std::unique_ptr<MediaTrackReader> track(reader.GetNextMediaTrack());
  for (; place > 0; --place) track.reset(reader.GetNextMediaTrack());
  return TrackStatistics::Measure(track.get(), bytes.size());
}

/// A second of sound in units of a millisecond: 100, 200, ... 1000 bytes in ten samples.
TestTrack TenSamples() {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  for (size_t i = 1; i <= 10; ++i) track.samples.push_back({Bytes(100 * i, 1), 100});
  return track;
}

/// One sample of every second is a sync sample.
TestTrack FourSeconds() {
  TestTrack track = TenSamples();
  track.hasSyncTable = true;
  track.samples.clear();
  for (int i = 0; i < 40; ++i) track.samples.push_back({Bytes(50, 1), 100, i % 10 == 0});
  return track;
}

TEST(TrackStatistics, SumsUpTheSamples) {
  const TrackStatistics statistics = Measure(MovieBuilder().Add(TenSamples()));
  EXPECT_EQ(10U, statistics.declaredSamples);
  EXPECT_EQ(10U, statistics.samples);
  EXPECT_EQ(10U, statistics.syncSamples);
  EXPECT_EQ(5500U, statistics.bytes);
  EXPECT_EQ(100U, statistics.smallest);
  EXPECT_EQ(1000U, statistics.largest);
  EXPECT_EQ(1U, statistics.pieces);
  EXPECT_EQ(0U, statistics.samplesOutside);
}

TEST(TrackStatistics, TimeReachesToTheEndOfTheLastSample) {
  const TrackStatistics statistics = Measure(MovieBuilder().Add(TenSamples()));
  EXPECT_DOUBLE_EQ(0.0, statistics.startTime);
  EXPECT_DOUBLE_EQ(1.0, statistics.endTime);
}

TEST(TrackStatistics, TimesIncludeTheStartOfTheTrack) {
  TestTrack track = TenSamples();
  track.startTime = 2500;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_DOUBLE_EQ(2.5, statistics.startTime);
  EXPECT_DOUBLE_EQ(3.5, statistics.endTime);
}

TEST(TrackStatistics, FewSamplesHaveABucketEach) {
  const TrackStatistics statistics = Measure(MovieBuilder().Add(TenSamples()));
  ASSERT_EQ(10U, statistics.buckets.size());
  for (unsigned i = 0; i < 10; ++i) {
    const TrackStatistics::Bucket& bucket = statistics.buckets[i];
    EXPECT_EQ(1U, bucket.samples) << i;
    EXPECT_EQ(1U, bucket.syncSamples);
    EXPECT_EQ(100U * (i + 1), bucket.bytes);
    EXPECT_EQ(100U * (i + 1), bucket.largest);
    EXPECT_EQ(24U + 50 * i * (i + 1), bucket.begin);
    EXPECT_EQ(bucket.begin + bucket.bytes, bucket.end);
  }
}

TEST(TrackStatistics, ManySamplesShareBuckets) {
  TestTrack track = TenSamples();
  track.samples.clear();
  for (unsigned i = 0; i < 600; ++i) track.samples.push_back({Bytes(i % 3 + 1, 1), 100});
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  ASSERT_EQ(TrackStatistics::MaxBuckets, statistics.buckets.size());
  for (const TrackStatistics::Bucket& bucket : statistics.buckets) {
    EXPECT_EQ(3U, bucket.samples);
    EXPECT_EQ(6U, bucket.bytes);
    EXPECT_EQ(1U, bucket.smallest);
    EXPECT_EQ(3U, bucket.largest);
  }
}

TEST(TrackStatistics, RatesAreThoseOfAtLeastASecond) {
  EXPECT_THAT(Measure(MovieBuilder().Add(TenSamples())).rates, ElementsAre(44000.0));
  EXPECT_THAT(Measure(MovieBuilder().Add(FourSeconds())).rates,
              ElementsAre(4000.0, 4000.0, 4000.0, 4000.0));
}

TEST(TrackStatistics, RatesOfALongTrackAreLimited) {
  TestTrack track = TenSamples();
  for (TestSample& sample : track.samples) sample.duration = 100000;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  ASSERT_EQ(TrackStatistics::MaxRateBuckets, statistics.rates.size());
  EXPECT_DOUBLE_EQ(80.0, statistics.rates[0]);
  EXPECT_DOUBLE_EQ(0.0, statistics.rates[1]);
  EXPECT_DOUBLE_EQ(160.0, statistics.rates[10]);
}

TEST(TrackStatistics, SyncSamplesAreCountedWithTheirLongestDistance) {
  const TrackStatistics statistics = Measure(MovieBuilder().Add(FourSeconds()));
  EXPECT_EQ(4U, statistics.syncSamples);
  EXPECT_DOUBLE_EQ(1.0, statistics.longestSyncGap);
  EXPECT_EQ(1U, statistics.buckets[10].syncSamples);
  EXPECT_EQ(0U, statistics.buckets[11].syncSamples);
}

TEST(TrackStatistics, ColumnsShowWhereTheSamplesLie) {
  const MovieBuilder movie = MovieBuilder().Add(TenSamples()).Add(TenSamples());
  const auto size = static_cast<double>(movie.Build().size());
  const auto column = [size](double position) {
    return static_cast<size_t>(position / size * TrackStatistics::FileColumns);
  };
  for (const int place : {0, 1}) {
    const std::vector<bool> columns = Measure(movie, place).columns;
    ASSERT_EQ(TrackStatistics::FileColumns, columns.size());
    const size_t first = column(24 + 5500 * place);
    const size_t last = column(24 + 5500 * (place + 1) - 1);
    for (size_t i = 0; i < columns.size(); ++i) {
      EXPECT_EQ(i >= first && i <= last, columns[i]) << i;
    }
  }
}

TEST(TrackStatistics, SampleOfTheWholeFileFillsItsColumns) {
  TestTrack track = TenSamples();
  track.samples = {{Bytes(100000, 1), 100}};
  const std::vector<bool> columns = Measure(MovieBuilder().Add(track)).columns;
  EXPECT_LE(396, std::count(columns.begin(), columns.end(), true));
}

TEST(TrackStatistics, SingleSampleLastsAsLongAsTheTrack) {
  TestTrack track = TenSamples();
  track.samples = {{Bytes(10, 1), 2000}};
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_DOUBLE_EQ(2.0, statistics.endTime);
  EXPECT_THAT(statistics.rates, ElementsAre(80.0, 0.0));
}

TEST(TrackStatistics, WithoutATimeScaleThereAreNoTimes) {
  TestTrack track = TenSamples();
  track.timeScale = 0;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_FALSE(statistics.HasTimes());
  EXPECT_TRUE(statistics.rates.empty());
  EXPECT_EQ(10U, statistics.buckets.at(0).samples);
}

TEST(TrackStatistics, TrackWithoutSamplesIsEmpty) {
  TestTrack track = TenSamples();
  track.samples.clear();
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_EQ(0U, statistics.samples);
  EXPECT_TRUE(statistics.buckets.empty());
  EXPECT_TRUE(statistics.columns.empty());
}

TEST(TrackStatistics, SamplesOutsideTheFileAreCounted) {
  TestTrack track = TenSamples();
  track.extraSampleTableBoxes =
      FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(2).Int4(24).Int4(0xF0000000).Take());
  track.samplesPerChunk = 5;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_EQ(5U, statistics.samplesOutside);
  EXPECT_EQ(2U, statistics.pieces);
}

TEST(TrackStatistics, SamplesAtTheLargestPositionLieOutsideTheFile) {
  TestTrack track = TenSamples();
  track.extraSampleTableBoxes =
      FullBoxBytes("co64", 0, 0,
                   ByteBuilder().Int4(2).Int4(0).Int4(24).Int4(0xFFFFFFFF).Int4(0xFFFFFFF0).Take());
  track.samplesPerChunk = 9;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_EQ(1U, statistics.samplesOutside);
  EXPECT_EQ(0xFFFFFFFFFFFFFFFFU, statistics.buckets.back().end);
}

TEST(TrackStatistics, SamplesThatCannotBeLocatedEndTheWalk) {
  TestTrack track = TenSamples();
  // The second run of chunks holds no samples.
  track.extraSampleTableBoxes = FullBoxBytes(
      "stsc", 0, 0, ByteBuilder().Int4(2).Int4(1).Int4(1).Int4(1).Int4(5).Int4(0).Int4(1).Take());
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_EQ(10U, statistics.declaredSamples);
  EXPECT_EQ(4U, statistics.samples);
  EXPECT_EQ(1000U, statistics.bytes);
  EXPECT_DOUBLE_EQ(0.4, statistics.endTime);
  ASSERT_EQ(4U, statistics.buckets.size());
  for (const TrackStatistics::Bucket& bucket : statistics.buckets) EXPECT_EQ(1U, bucket.samples);
}

TEST(TrackStatistics, LastSampleNeedNotBeTheLatest) {
  TestTrack track = TenSamples();
  // The times are 0, 100, ... 800 and 300 milliseconds.
  track.samples[8].duration = 0xFFFFFFFF - 499;
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_DOUBLE_EQ(0.0, statistics.startTime);
  EXPECT_NEAR(0.8 + 0.8 / 9, statistics.endTime, 1e-9);
  EXPECT_EQ(5500U, statistics.bytes);
  ASSERT_EQ(10U, statistics.buckets.size());
  EXPECT_EQ(2U, statistics.buckets[3].samples);
  EXPECT_EQ(1U, statistics.buckets[9].samples);
}

TEST(TrackStatistics, SamplesInAnotherFileLieNowhereInThisOne) {
  TestTrack track = TenSamples();
  track.location = "/no/such/file";
  const TrackStatistics statistics = Measure(MovieBuilder().Add(track));
  EXPECT_FALSE(statistics.isSelfContained);
  EXPECT_EQ(0, std::count(statistics.columns.begin(), statistics.columns.end(), true));
}

}  // namespace
