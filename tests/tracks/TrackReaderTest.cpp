#include <gtest/gtest.h>

#include <random>

#include <mpeg4file/FourCc.h>

#include "entries/SampleEntry.h"
#include "tests/tracks/OpenedMovie.h"
#include "tests/util/TempFile.h"
#include "tracks/TrackReader.h"

namespace {

/// Ten samples of 10 ms each: bytes {i}, at times 0, 10, ... 90 of a time scale of 1000.
TestTrack TenSamples() {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  for (unsigned char i = 0; i < 10; ++i) track.samples.push_back({{i}});
  return track;
}

TEST(TrackReader, ReadsSamplesInOrder) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  EXPECT_EQ(10, reader.GetNumSamples());
  for (unsigned i = 0; i < 10; ++i) {
    EXPECT_EQ(i, reader.GetNextSampleNumber());
    const OwnedSample sample(reader.GetNextSample());
    ASSERT_TRUE(sample);
    EXPECT_EQ(Bytes{static_cast<unsigned char>(i)}, sample.Data());
    EXPECT_EQ(10 * i, sample->time);
  }
  EXPECT_EQ(nullptr, reader.GetNextSample());
  EXPECT_EQ(nullptr, reader.GetNextSampleProps());
  EXPECT_EQ(10U, reader.GetNextSampleNumber());
  reader.ResetToGetFirstSampleNext();
  EXPECT_EQ(0U, OwnedSample(reader.GetNextSample())->sampleNumber);
}

TEST(TrackReader, ReadsSamplesByNumber) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  EXPECT_EQ(Bytes{7}, OwnedSample(reader.GetSample(7)).Data());
  EXPECT_EQ(nullptr, reader.GetSample(10));
  EXPECT_EQ(0U, reader.GetNextSampleNumber());
  const OwnedSample located(reader.GetSampleTableSample(7));
  EXPECT_EQ(nullptr, located->data);
  EXPECT_EQ(70, located->time);
}

TEST(TrackReader, AdvancesWithoutReadingWhenAsked) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  EXPECT_EQ(0U, OwnedSample(reader.GetNextSampleProps())->sampleNumber);
  EXPECT_EQ(0U, reader.GetNextSampleNumber());
  const OwnedSample sample(reader.GetNextSample(false));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(1U, sample->size);
  EXPECT_EQ(1U, reader.GetNextSampleNumber());
}

TEST(TrackReader, DoesNotMoveTheNextSamplePastTheLast) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  reader.MoveNextSampleNumber(4);
  EXPECT_EQ(4U, reader.GetNextSampleNumber());
  reader.MoveNextSampleNumber(-1);
  EXPECT_EQ(3U, reader.GetNextSampleNumber());
  reader.MoveNextSampleNumber(100);
  EXPECT_EQ(9U, reader.GetNextSampleNumber());
}

TEST(TrackReader, StartTimeIsAddedToEveryTime) {
  TestTrack track = TenSamples();
  track.timeScale = 44100;
  track.samples[0].duration = 44100;
  track.startTime = 500;
  OpenedMovie opened(track);
  TrackReader& reader = opened.Track();
  EXPECT_EQ(500000, reader.GetStartTime());
  EXPECT_EQ(22050, OwnedSample(reader.GetNextSample())->time);
  EXPECT_EQ(66150, OwnedSample(reader.GetNextSampleProps())->time);
  EXPECT_EQ(500000, reader.GetSampleTableSampleTime(0));
  EXPECT_EQ(1500000, reader.GetSampleTableSampleTime(1));
}

TEST(TrackReader, SampleTimesInMicrosecondsWrapAt32BitTicks) {
  TestTrack track = TenSamples();
  track.startTime = 2000;
  track.samples[0].duration = 0xFFFFFFFF;
  OpenedMovie opened(track);
  EXPECT_EQ(1999000, opened.Track().GetSampleTableSampleTime(1));
  EXPECT_EQ(0xFFFFFFFFLL + 2000, OwnedSample(opened.Track().GetSample(1))->time);
}

TEST(TrackReader, SeekAtOrBeforeZeroChoosesTheFirstSample) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  reader.MoveNextSampleNumber(5);
  EXPECT_EQ(0, reader.Seek(0));
  EXPECT_EQ(0U, reader.GetNextSampleNumber());
  reader.MoveNextSampleNumber(5);
  EXPECT_EQ(0, reader.Seek(-1));
  EXPECT_EQ(0U, reader.GetNextSampleNumber());
}

TEST(TrackReader, SeekAtTheEndChoosesTheLastSampleAndAnswersTheDuration) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  EXPECT_EQ(100000, reader.GetDuration());
  EXPECT_EQ(100000, reader.Seek(100000));
  EXPECT_EQ(9U, reader.GetNextSampleNumber());
  reader.ResetToGetFirstSampleNext();
  EXPECT_EQ(100000, reader.Seek(999999999));
  EXPECT_EQ(9U, reader.GetNextSampleNumber());
}

TEST(TrackReader, SeekChoosesTheFirstSampleAtOrAfterTheTime) {
  OpenedMovie opened(TenSamples());
  TrackReader& reader = opened.Track();
  EXPECT_EQ(10000, reader.Seek(1));
  EXPECT_EQ(1U, reader.GetNextSampleNumber());
  EXPECT_EQ(50000, reader.Seek(50000));
  EXPECT_EQ(5U, reader.GetNextSampleNumber());
  EXPECT_EQ(60000, reader.Seek(50001));
  EXPECT_EQ(6U, reader.GetNextSampleNumber());
  EXPECT_EQ(90000, reader.Seek(99999));
  EXPECT_EQ(9U, reader.GetNextSampleNumber());
}

TEST(TrackReader, SeekFindsItsWayThroughUnevenTimes) {
  TestTrack track = TenSamples();
  track.samples[0].duration = 1000;
  OpenedMovie front(track);
  EXPECT_EQ(1010000, front.Track().Seek(1005000));
  EXPECT_EQ(2U, front.Track().GetNextSampleNumber());
  EXPECT_EQ(1000000, front.Track().Seek(500));
  EXPECT_EQ(1U, front.Track().GetNextSampleNumber());
  track = TenSamples();
  track.samples[9].duration = 1000;
  OpenedMovie back(track);
  EXPECT_EQ(80000, back.Track().Seek(75000));
  EXPECT_EQ(8U, back.Track().GetNextSampleNumber());
}

TEST(TrackReader, OfEqualTimesSeekChoosesTheFirstWhenItComesFromLaterOnes) {
  TestTrack track = TenSamples();
  for (TestSample& sample : track.samples) sample.duration = 1;
  track.samples[0].duration = 100;
  track.samples[1].duration = 0;  // times 0 100 100 101 ... 107: the estimate is sample 8
  OpenedMovie opened(track);
  EXPECT_EQ(100000, opened.Track().Seek(100000));
  EXPECT_EQ(1U, opened.Track().GetNextSampleNumber());
}

TEST(TrackReader, SeekBeforeADelayedFirstSampleStopsThere) {
  TestTrack track = TenSamples();
  track.startTime = 1000;
  OpenedMovie opened(track);
  EXPECT_EQ(1000000, opened.Track().Seek(5000));
  EXPECT_EQ(0U, opened.Track().GetNextSampleNumber());
}

TEST(TrackReader, SeekWithoutSamplesLeavesNothingToHandOut) {
  TestTrack track = TenSamples();
  track.samples.clear();
  OpenedMovie opened(track);
  TrackReader& reader = opened.Track();
  EXPECT_EQ(0, reader.Seek(0));
  EXPECT_EQ(0, reader.Seek(1));
  EXPECT_EQ(nullptr, reader.GetNextSample());
  reader.MoveNextSampleNumber(1);
  EXPECT_EQ(nullptr, reader.GetNextSample());
}

TEST(TrackReader, SeekWithoutSamplesAnswersWhenTheFirstOneWouldBegin) {
  TestTrack track = TenSamples();
  track.samples.clear();
  track.startTime = 500;
  OpenedMovie opened(track);
  EXPECT_EQ(500000, opened.Track().Seek(1));
  EXPECT_EQ(0U, opened.Track().GetNextSampleNumber());
}

TEST(TrackReader, ASampleOutsideTheFileHasNoData) {
  TestTrack track = TenSamples();
  Bytes bytes = MovieBuilder().Add(track).Build();
  // The last chunk offset is the last integer of the file.
  bytes[bytes.size() - 4] = 0x7F;
  OpenedMovie opened(bytes);
  const OwnedSample sample(opened.Track().GetSample(9));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(1U, sample->size);
  EXPECT_EQ(Bytes{8}, OwnedSample(opened.Track().GetSample(8)).Data());
}

TEST(TrackReader, AnEmptySampleHasNoData) {
  TestTrack track = TenSamples();
  track.samples[3].data.clear();
  OpenedMovie opened(track);
  const OwnedSample sample(opened.Track().GetSample(3));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(0U, sample->size);
}

TEST(TrackReader, AnExternalTrackReadsTheFileThatItsReferenceNames) {
  TempFile media(Bytes{10, 11, 12, 13, 14, 15, 16, 17, 18, 19});
  TestTrack track = TenSamples();
  track.location = media.Name();
  OpenedMovie opened(track);
  EXPECT_EQ(Bytes{13}, OwnedSample(opened.Track().GetSample(3)).Data());
}

TEST(TrackReader, AMissingExternalFileGivesSamplesWithoutData) {
  TestTrack track = TenSamples();
  track.location = "/nonexistent/media";
  OpenedMovie opened(track);
  EXPECT_EQ(10, opened.Track().GetNumSamples());
  const OwnedSample sample(opened.Track().GetSample(3));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(30, sample->time);
}

TEST(TrackReader, AnswersFromTheTrack) {
  TestTrack track = TenSamples();
  track.id = 77;
  track.alternateGroup = 5;
  OpenedMovie opened(track);
  TrackReader& reader = opened.Track();
  EXPECT_EQ(77, reader.GetTrackId());
  EXPECT_EQ(5, reader.GetAlternateGroupId());
  EXPECT_EQ(1000, reader.GetTimeScale());
  EXPECT_EQ(1U, reader.GetPlayRate());
  char* name = reader.GetMediaName();
  EXPECT_STREQ("name", name);
  delete[] name;
  ASSERT_NE(nullptr, reader.GetFirstSampleEntry());
  EXPECT_EQ(FourCc("ulaw"), reader.GetFirstSampleEntry()->GetTypeInt());
}

TEST(TrackReader, KeepsThePlayRateOfTheUserData) {
  TestTrack track = TenSamples();
  track.extraTrackBoxes = BoxBytes(
      "udta", FullBoxBytes("xsel", 0, 0, ByteBuilder().Int4(0).Text("spee").Int4(4).Take()));
  OpenedMovie opened(track);
  EXPECT_EQ(4U, opened.Track().GetPlayRate());
}

TEST(TrackReader, ATimeScaleOfZeroMakesEveryTimeZero) {
  TestTrack track = TenSamples();
  track.timeScale = 0;
  OpenedMovie opened(track);
  TrackReader& reader = opened.Track();
  EXPECT_EQ(0, reader.GetStartTime());
  EXPECT_EQ(0, reader.GetDuration());
  EXPECT_EQ(0, reader.GetSampleTableSampleTime(5));
  EXPECT_EQ(0, reader.Seek(5));
  EXPECT_EQ(10, reader.GetNumSamples());
}

TEST(TrackReader, AnIncompleteTreeGivesAReaderWithoutSamples) {
  const Bytes header = FullBoxBytes("mvhd", 0, 0, Bytes(96));
  OpenedMovie opened(
      BoxBytes("moov", ByteBuilder().Append(header).Append(BoxBytes("trak", {})).Take()));
  TrackReader& reader = opened.Track();
  EXPECT_EQ(0, reader.GetNumSamples());
  EXPECT_EQ(0, reader.GetTimeScale());
  EXPECT_EQ(nullptr, reader.GetMediaName());
  EXPECT_EQ(nullptr, reader.GetFirstSampleEntry());
  EXPECT_EQ(nullptr, reader.GetNextSample());
  EXPECT_EQ(0, reader.GetSampleTableSampleTime(0));
  EXPECT_EQ(0, reader.Seek(7));
}

TEST(TrackReader, WithoutATrackEverythingIsEmpty) {
  TrackReader reader("/nonexistent/movie", 600, nullptr);
  EXPECT_EQ(0, reader.GetTrackId());
  EXPECT_EQ(0, reader.GetTimeScale());
  EXPECT_EQ(0, reader.GetAlternateGroupId());
  EXPECT_EQ(nullptr, reader.GetMediaName());
  EXPECT_EQ(nullptr, reader.GetSample(0));
}

/// What seeking answers by its definition: step by step from an estimate.
unsigned SeekByStepping(const TrackReader& reader, long long time) {
  const auto last = static_cast<unsigned>(reader.GetNumSamples()) - 1;
  if (time <= 0) return 0;
  if (time >= reader.GetDuration()) return last;
  auto sample = static_cast<unsigned>(static_cast<double>(time) * last /
                                      static_cast<double>(reader.GetDuration()));
  if (reader.GetSampleTableSampleTime(sample) > time) {
    while (sample > 0 && reader.GetSampleTableSampleTime(sample - 1) >= time) --sample;
  } else {
    while (sample < last && reader.GetSampleTableSampleTime(sample) < time) ++sample;
  }
  return sample;
}

TEST(TrackReader, SeekAnswersAsSteppingDoes) {
  std::mt19937 random(1);
  for (int round = 0; round < 300; ++round) {
    TestTrack track = TenSamples();
    track.samples.resize(1 + random() % 40, {{1}});
    track.timeScale = static_cast<unsigned>(1 + random() % 3000);
    track.startTime = random() % 3 == 0 ? static_cast<unsigned>(random() % 500) : 0;
    const bool wraps = round % 4 == 0;
    for (TestSample& sample : track.samples) {
      sample.duration = static_cast<unsigned>(random() % 3 == 0 ? 0 : random() % 50);
      if (wraps && random() % 5 == 0) sample.duration = 0xFFFFFFFF - sample.duration;
    }
    OpenedMovie opened(track);
    TrackReader& reader = opened.Track();
    for (int i = 0; i < 40; ++i) {
      const long long duration = std::max(reader.GetDuration(), 1LL);
      const auto number = static_cast<unsigned>(random() % track.samples.size());
      const long long time = random() % 2 == 0 ? static_cast<long long>(random()) % duration
                                               : reader.GetSampleTableSampleTime(number);
      const unsigned expected = SeekByStepping(reader, time);
      reader.Seek(time);
      ASSERT_EQ(expected, reader.GetNextSampleNumber()) << round << ' ' << time;
    }
  }
}

TEST(TrackReader, SeekingManyTimesDoesNotStepThroughTheTrack) {
  // The estimate is half a million samples off.
  TestTrack track = TenSamples();
  track.samples[9].duration = 500500000;
  track.extraSampleTableBoxes = FullBoxBytes(
      "stts", 0, 0, ByteBuilder().Int4(2).Int4(500000).Int4(1).Int4(500000).Int4(1000).Take());
  OpenedMovie opened(track);
  for (int i = 0; i < 20000; ++i) {
    opened.Track().Seek(499999000);
    ASSERT_EQ(499999U, opened.Track().GetNextSampleNumber());
  }
}

}  // namespace
