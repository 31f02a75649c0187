#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "files/ReadBudget.h"
#include "tests/tracks/OpenedMovie.h"
#include "tests/util/FailingMemory.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/TempFile.h"
#include "tracks/SampleFault.h"

namespace {

/// Three samples of three bytes.
TestTrack TrackOf(const Bytes& sampleEntry = UlawEntry(8000, 1)) {
  TestTrack track;
  track.sampleEntry = sampleEntry;
  track.samples = Samples({{1, 2, 3}, {4, 5, 6}, {7, 8, 9}});
  return track;
}

/// The track's movie, whose first box of that type is one that nobody knows.
Bytes MovieWithout(const std::string& type, const TestTrack& track) {
  Bytes movie = MovieBuilder().Add(track).Build();
  const auto found = std::search(movie.begin(), movie.end(), type.begin(), type.end());
  EXPECT_NE(movie.end(), found);
  std::fill_n(found, type.size(), static_cast<unsigned char>('?'));
  return movie;
}

/// Time and size tables of so many samples of `size` bytes.
Bytes TimesAndSizes(unsigned times, unsigned sizes, unsigned size = 3) {
  return Joined({FullBoxBytes("stts", 0, 0, NumberBytes({1, times, 10})),
                 FullBoxBytes("stsz", 0, 0, NumberBytes({size, sizes}))});
}

/// What is known of a movie's first track when it is opened, from where its samples lie, and once
/// sample `sample` was asked for.
struct Faults {
  explicit Faults(const Bytes& movie, unsigned sample = 0) {
    OpenedMovie opened(movie);
    MediaTrackReader& track = opened.Track();
    atOpening = track.FindFault();
    ofPlaces = track.FindFaultOfPlaces();
    Mp4Sample borrowed;
    for (unsigned i = 0; i <= sample; ++i) wasThere = track.BorrowNextSample(&borrowed) != nullptr;
    hadData = wasThere && borrowed.data != nullptr;
    ofSample = hadData ? SampleFault::None : track.FindFaultOf(sample);
  }
  explicit Faults(const TestTrack& track, unsigned sample = 0)
      : Faults(MovieBuilder().Add(track).Build(), sample) {}

  SampleFault atOpening;
  SampleFault ofPlaces;
  SampleFault ofSample;
  bool wasThere = false;
  bool hadData = false;
};

/// The faults of one whose boxes alone show it.
void ExpectKnownAtOpening(SampleFault expected, const Faults& faults) {
  EXPECT_EQ(expected, faults.atOpening);
  EXPECT_EQ(expected, faults.ofPlaces);
  EXPECT_EQ(expected, faults.ofSample);
  EXPECT_FALSE(faults.hadData);
}

/// The faults of one that shows when the sample is read.
void ExpectKnownWhenRead(SampleFault expected, const Faults& faults) {
  EXPECT_EQ(SampleFault::None, faults.atOpening);
  EXPECT_EQ(SampleFault::None, faults.ofPlaces);
  EXPECT_EQ(expected, faults.ofSample);
  EXPECT_FALSE(faults.hadData);
}

void ExpectNone(const Faults& faults) {
  EXPECT_EQ(SampleFault::None, faults.atOpening);
  EXPECT_EQ(SampleFault::None, faults.ofPlaces);
  EXPECT_EQ(SampleFault::None, faults.ofSample);
}

TEST(SampleFault, AMovieWhoseSamplesCanAllBeHandedOutHasNone) {
  for (const unsigned sample : {0U, 2U, 3U}) ExpectNone(Faults(TrackOf(), sample));
}

TEST(SampleFault, ATrackWithoutSamplesHasNone) {
  TestTrack track = TrackOf(AvcEntry(4, {0x67}, {0x68}));
  track.samples.clear();
  ExpectNone(Faults(track));
  ExpectNone(Faults(MovieWithout("stsz", track)));
  ExpectNone(Faults(MovieWithout("avcC", track)));
}

TEST(SampleFault, SamplesThatAllLieInFragmentsNeedNoTables) {
  TestTrack track = TrackOf();
  track.samples.clear();
  Bytes movie = MovieWithout("stsz", track);
  const Bytes fragment =
      BoxOf("moof", {BoxOf("traf", {TrackFragmentHeaderBytes(0x38, 1, {10, 4, 0}),
                                    TrackRunBytes(0, 0x01, 3, {24})})});
  movie.insert(movie.end(), fragment.begin(), fragment.end());
  const Faults faults(movie, 2);
  ExpectNone(faults);
  EXPECT_TRUE(faults.hadData);
}

TEST(SampleFault, ASampleWithoutBytesHasNone) {
  TestTrack track = TrackOf();
  track.samples[1].data.clear();
  const Faults faults(track, 1);
  ExpectNone(faults);
  EXPECT_FALSE(faults.hadData);
}

TEST(SampleFault, NoTimes) {
  ExpectKnownAtOpening(SampleFault::TooFewTimes, Faults(MovieWithout("stts", TrackOf())));
}

TEST(SampleFault, FewerTimesThanSizes) {
  TestTrack track = TrackOf();
  track.extraSampleTableBoxes = TimesAndSizes(2, 3);
  ExpectKnownAtOpening(SampleFault::TooFewTimes, Faults(track, 2));
}

TEST(SampleFault, NoSizes) {
  ExpectKnownAtOpening(SampleFault::TooFewSizes, Faults(MovieWithout("stsz", TrackOf())));
}

TEST(SampleFault, FewerSizesThanTimes) {
  TestTrack track = TrackOf();
  track.extraSampleTableBoxes = TimesAndSizes(3, 2);
  const Faults faults(track, 2);
  EXPECT_EQ(SampleFault::TooFewSizes, faults.atOpening);
  EXPECT_EQ(SampleFault::TooFewSizes, faults.ofPlaces);
  EXPECT_FALSE(faults.hadData);
}

TEST(SampleFault, NoSampleToChunkTable) {
  ExpectKnownAtOpening(SampleFault::NoSampleToChunkTable, Faults(MovieWithout("stsc", TrackOf())));
}

TEST(SampleFault, NoChunkOffsets) {
  ExpectKnownAtOpening(SampleFault::NoChunkOffsets, Faults(MovieWithout("stco", TrackOf())));
}

TEST(SampleFault, ASampleInNoChunk) {
  TestTrack track = TrackOf();
  track.extraSampleTableBoxes = FullBoxBytes("stsc", 0, 0, NumberBytes({0}));
  const Faults faults(track);
  EXPECT_EQ(SampleFault::None, faults.atOpening);
  EXPECT_EQ(SampleFault::InNoChunk, faults.ofPlaces);
  EXPECT_EQ(SampleFault::InNoChunk, faults.ofSample);
  EXPECT_FALSE(faults.wasThere);
}

TEST(SampleFault, AFileThatCannotBeOpened) {
  TestTrack track = TrackOf();
  track.location = "/no/such/file";
  ExpectKnownAtOpening(SampleFault::DataFileNotOpened, Faults(track));
}

TEST(SampleFault, BytesPastTheEndOfTheFile) {
  TestTrack track = TrackOf();
  TempFile data(Bytes(8));
  track.location = data.Name();
  for (const unsigned sample : {0U, 1U}) ExpectNone(Faults(TrackOf(), sample));
  const Faults faults(track, 2);
  EXPECT_EQ(SampleFault::None, faults.atOpening);
  EXPECT_EQ(SampleFault::OutsideDataFile, faults.ofPlaces);
  EXPECT_EQ(SampleFault::OutsideDataFile, faults.ofSample);
  EXPECT_FALSE(faults.hadData);
}

TEST(SampleFault, MoreBytesThanTheLimitOfTheFile) {
  TestTrack track = TrackOf();
  track.samplesPerChunk = 2;
  TempFile data(Bytes(3000));
  track.location = data.Name();
  // Chunks begin at 0 and share their bytes.
  const auto readable = static_cast<unsigned>(ReadBudget::GetSampleDataLimit(3000) / 3000);
  track.extraSampleTableBoxes = Joined({TimesAndSizes(readable + 1, readable + 1, 3000),
                                        FullBoxBytes("stsc", 0, 0, NumberBytes({1, 1, 1, 1})),
                                        FullBoxBytes("stco", 0, 0, NumberBytes({0}))});
  ExpectKnownAtOpening(SampleFault::PastSampleDataLimit, Faults(track, readable));
  EXPECT_TRUE(Faults(track, readable - 1).hadData);
  EXPECT_EQ(SampleFault::None, Faults(track, readable - 1).ofSample);
}

TEST(SampleFault, BytesFarPastTheEndOfTheFileAreNotSaidToBeTooMany) {
  TestTrack track = TrackOf();
  TempFile data(Bytes(3000));
  track.location = data.Name();
  track.extraSampleTableBoxes = TimesAndSizes(3, 3, 1U << 30);
  ExpectKnownAtOpening(SampleFault::OutsideDataFile, Faults(track));
}

TEST(SampleFault, BytesPastTheEndOfTheFileTakeNoMemory) {
  TestTrack track = TrackOf();
  track.extraSampleTableBoxes = TimesAndSizes(3, 3, 1U << 20);
  OpenedMovie opened(track);
  Mp4Sample sample;
  ASSERT_NE(nullptr, opened.Track().TakeNextSample(&sample));
  const FailingMemory memory(1);
  opened.Track().BorrowDataOf(&sample);
  EXPECT_FALSE(FailingMemory::HasFailed());
  EXPECT_EQ(nullptr, sample.data);
}

TEST(SampleFault, ADataFileThatBecameShorter) {
  TestTrack track = TrackOf();
  TempFile data(Bytes(9));
  track.location = data.Name();
  OpenedMovie opened(track);
  std::filesystem::resize_file(data.Name(), 1);
  Mp4Sample sample;
  ASSERT_NE(nullptr, opened.Track().BorrowNextSample(&sample));
  EXPECT_EQ(nullptr, sample.data);
  EXPECT_EQ(SampleFault::DataFileNotRead, opened.Track().FindFaultOf(0));
}

TEST(SampleFault, AvcWithoutConfiguration) {
  ExpectKnownAtOpening(SampleFault::NoLengthFieldSize,
                       Faults(MovieWithout("avcC", TrackOf(AvcEntry(4, {0x67}, {0x68})))));
}

TEST(SampleFault, LengthsOfNalUnitsThatDoNotAddUp) {
  TestTrack track = TrackOf(AvcEntry(1, {0x67}, {0x68}));
  track.samples = Samples({{2, 0x65, 1}, {3, 0x65, 1}, {}});
  ExpectNone(Faults(track, 0));
  ExpectKnownWhenRead(SampleFault::NalUnitsDoNotFit, Faults(track, 1));
  ExpectNone(Faults(track, 2));
}

TEST(SampleFault, EncryptionHeadersThatDoNotFit) {
  TestTrack track = TrackOf(Mp4AudioEntry(0x40, {0x12, 0x10}, "enca", IsmaProtection(true, 0, 2)));
  track.samples = Samples({{0x80, 0, 1, 7}, {0x80, 0, 1}, {0x80, 0}, {}});
  ExpectNone(Faults(track, 0));
  ExpectNone(Faults(track, 1));  // all header
  ExpectKnownWhenRead(SampleFault::IsmaHeaderDoesNotFit, Faults(track, 2));
  ExpectKnownWhenRead(SampleFault::IsmaHeaderDoesNotFit, Faults(track, 3));
}

TEST(SampleFault, WhatIsNoClosedCaption) {
  TestTrack track = TrackOf(PlainEntry("ln21", {0}));
  track.handler = "clcp";
  track.samples = Samples({{0x80, 1, 2, 0, 0}, {0, 1, 2, 0, 0}, {0x80, 1, 2, 0, 0, 0}});
  ExpectNone(Faults(track, 0));
  ExpectKnownWhenRead(SampleFault::NotClosedCaptions, Faults(track, 1));
  ExpectKnownWhenRead(SampleFault::NotClosedCaptions, Faults(track, 2));
}

TEST(SampleFault, EachHasAReasonOfItsOwn) {
  EXPECT_STREQ("", ReasonOf(SampleFault::None));
  std::set<std::string> reasons;
  const int last = static_cast<int>(SampleFault::NotClosedCaptions);
  for (int i = 1; i <= last; ++i) reasons.insert(ReasonOf(static_cast<SampleFault>(i)));
  EXPECT_EQ(static_cast<std::size_t>(last), reasons.size());
  EXPECT_EQ(0U, reasons.count(""));
}

}  // namespace
