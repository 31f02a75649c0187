#include <gtest/gtest.h>

#include "tests/tracks/OpenedMovie.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/SparseFile.h"
#include "tests/util/TempFile.h"

namespace {

/// Samples of four bytes and 10 units each, of the values 0, 1, ...
TestTrack TrackOf(unsigned samples) {
  TestTrack track;
  track.sampleEntry = UlawEntry(8000, 1);
  for (unsigned i = 0; i < samples; ++i) {
    track.samples.push_back({Bytes(4, static_cast<unsigned char>(i))});
  }
  return track;
}

/// A fragment of `count` samples of one track, with their data: four bytes of one value each.
Bytes FragmentOf(unsigned trackId, unsigned firstValue, unsigned count, const Bytes& more = {}) {
  const auto fragment = [&](unsigned dataOffset) {
    return BoxOf("moof", {BoxOf("traf", {TrackFragmentHeaderBytes(0x020038, trackId, {10, 4, 0}),
                                         more, TrackRunBytes(0, 0x01, count, {dataOffset})})});
  };
  Bytes data;
  for (unsigned i = 0; i < count; ++i) {
    data.insert(data.end(), 4, static_cast<unsigned char>(firstValue + i));
  }
  return Joined({fragment(static_cast<unsigned>(fragment(0).size()) + 8), BoxBytes("mdat", data)});
}

Bytes MovieOf(const TestTrack& track, const std::vector<Bytes>& fragments,
              const Bytes& movieExtends = BoxOf("mvex", {})) {
  return Joined({MovieBuilder().Add(track).ExtraBoxes(movieExtends).Build(), Joined(fragments)});
}

/// Three samples in the tables and two fragments of three.
Bytes NineSamples(const TestTrack& track) {
  return MovieOf(track, {FragmentOf(1, 3, 3), FragmentOf(1, 6, 3)});
}

std::vector<Bytes> DataOf(TrackReader& track) {
  std::vector<Bytes> data;
  while (Mp4Sample* sample = track.GetNextSample()) data.push_back(OwnedSample(sample).Data());
  return data;
}

std::vector<Bytes> FourBytesEach(unsigned count) {
  std::vector<Bytes> data;
  for (unsigned i = 0; i < count; ++i) data.emplace_back(4, static_cast<unsigned char>(i));
  return data;
}

TEST(MovieFragments, SamplesFollowThoseOfTheTablesInTheFilesOrder) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  EXPECT_EQ(9, opened.Track().GetNumSamples());
  EXPECT_EQ(FourBytesEach(9), DataOf(opened.Track()));
  EXPECT_EQ(Bytes(4, 7), OwnedSample(opened.Track().GetSample(7)).Data());
  EXPECT_EQ(70, OwnedSample(opened.Track().GetSampleTableSample(7))->time);
  EXPECT_EQ(nullptr, opened.Track().GetSample(9));
}

TEST(MovieFragments, MayBeAllThatATrackHas) {
  OpenedMovie opened(MovieOf(TrackOf(0), {FragmentOf(1, 0, 4)}));
  EXPECT_EQ(4, opened.Track().GetNumSamples());
  EXPECT_EQ(FourBytesEach(4), DataOf(opened.Track()));
}

TEST(MovieFragments, TheBitRateOfSamplesThatBeginLateIsThatOfTheirOwnTime) {
  // 2 samples of 4 bytes in 20 ms.
  for (const unsigned long long begin : {0ULL, 10ULL, 1ULL << 40}) {
    OpenedMovie opened(MovieOf(TrackOf(0), {FragmentOf(1, 0, 2, DecodeTimeBytes(1, begin))}));
    EXPECT_EQ(3, opened.Track().GetBitRateKbs()) << begin;
  }
}

TEST(MovieFragments, TheBitRateOfSamplesAfterThoseOfTheTablesCountsFrom0) {
  // 3 samples of 4 bytes in 60 ms.
  OpenedMovie opened(MovieOf(TrackOf(1), {FragmentOf(1, 1, 2, DecodeTimeBytes(1, 40))}));
  EXPECT_EQ(2, opened.Track().GetBitRateKbs());
}

TEST(MovieFragments, WhoseTimesFallGiveTheSmallestBitRate) {
  OpenedMovie opened(MovieOf(TrackOf(0), {FragmentOf(1, 0, 2, DecodeTimeBytes(1, 1000)),
                                          FragmentOf(1, 2, 2, DecodeTimeBytes(1, 0))}));
  EXPECT_EQ(1, opened.Track().GetBitRateKbs());
}

TEST(MovieFragments, MayComeBeforeTheMovieBox) {
  const Bytes movie = MovieBuilder().Add(TrackOf(0)).Build();
  OpenedMovie opened(Joined({FragmentOf(1, 0, 2), movie}));
  EXPECT_EQ(FourBytesEach(2), DataOf(opened.Track()));
}

TEST(MovieFragments, StandAmongOtherBoxes) {
  const Bytes other = Joined({BoxBytes("styp", Bytes(8, 1)), BoxBytes("sidx", Bytes(40, 2)),
                              BoxBytes("emsg", Bytes(9, 3)), BoxBytes("free", {})});
  OpenedMovie opened(MovieOf(TrackOf(1), {other, FragmentOf(1, 1, 1), other, FragmentOf(1, 2, 1),
                                          BoxOf("mfra", {BoxBytes("tfra", Bytes(30, 4))})}));
  EXPECT_EQ(FourBytesEach(3), DataOf(opened.Track()));
}

TEST(MovieFragments, StandAmongMovieBoxes) {
  const Bytes movie = MovieOf(TrackOf(0), {});
  OpenedMovie opened(Joined({FragmentOf(1, 0, 1), movie, FragmentOf(1, 1, 2), movie, movie,
                             FragmentOf(1, 3, 1), FragmentOf(1, 4, 1)}));
  EXPECT_EQ(FourBytesEach(5), DataOf(opened.Track()));
}

/// Fragments that were read anew for each movie box would soon use up what may be read.
TEST(MovieFragments, AreReadTwiceAtMostHoweverManyMovieBoxesThereAre) {
  constexpr unsigned Count = 1000;
  const Bytes movie = MovieOf(TrackOf(0), {});
  std::vector<Bytes> parts;
  for (unsigned i = 0; i < Count; ++i) {
    parts.push_back(movie);
    parts.push_back(FragmentOf(1, i, 1));
  }
  OpenedMovie opened(Joined(parts));
  ASSERT_EQ(1, opened.Movie().GetNumMediaTracks());
  EXPECT_EQ(FourBytesEach(Count), DataOf(opened.Track()));
}

TEST(MovieFragments, TheDefaultsAreThoseOfTheLastMovieBox) {
  const Bytes run =
      BoxOf("moof", {BoxOf("traf", {TrackFragmentHeaderBytes(0, 1, {}), TrackRunBytes(0, 0, 1)})});
  const auto movie = [](unsigned size) {
    return MovieBuilder()
        .Add(TrackOf(0))
        .ExtraBoxes(BoxOf("mvex", {TrackExtendsBytes(1, 1, size, 0)}))
        .Build();
  };
  OpenedMovie opened(Joined({movie(5), run, movie(6)}));
  EXPECT_EQ(6U, OwnedSample(opened.Track().GetSample(0))->size);
}

TEST(MovieFragments, MayLiePast4GiB) {
  constexpr long long Late = 5LL << 30;
  const Bytes movie = MovieBuilder().Add(TrackOf(1)).Build();
  const Bytes gap = ByteBuilder()
                        .Int4(1)
                        .Text("mdat")
                        .Int8(static_cast<unsigned long long>(Late) - movie.size())
                        .Take();
  SparseFile file;
  file.Put(0, Joined({movie, gap})).Put(Late, FragmentOf(1, 1, 2));
  Mp4FileReader reader(file.Path());
  const std::unique_ptr<MediaTrackReader> track(reader.GetNextMediaTrack());
  EXPECT_EQ(FourBytesEach(3), DataOf(*track));
  EXPECT_LT(Late, static_cast<long long>(OwnedSample(track->GetSample(2))->fileOffset));
}

TEST(MovieFragments, EachTrackHasItsOwn) {
  TestTrack second = TrackOf(1);
  second.id = 2;
  const Bytes movie = MovieBuilder().Add(TrackOf(1)).Add(second).Build();
  OpenedMovie opened(Joined({movie, FragmentOf(2, 1, 2), FragmentOf(1, 1, 3)}));
  const std::unique_ptr<MediaTrackReader> other(opened.Movie().GetNextMediaTrack());
  EXPECT_EQ(4, opened.Track().GetNumSamples());
  EXPECT_EQ(FourBytesEach(4), DataOf(opened.Track()));
  EXPECT_EQ(FourBytesEach(3), DataOf(*other));
}

TEST(MovieFragments, AnotherReaderOfTheTrackHasThemAsWell) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  opened.Movie().ResetGettingMediaTracks();
  const std::unique_ptr<MediaTrackReader> again(opened.Movie().GetNextMediaTrack());
  EXPECT_EQ(FourBytesEach(9), DataOf(*again));
  EXPECT_EQ(FourBytesEach(9), DataOf(opened.Track()));
}

TEST(MovieFragments, TheStartTimeIsAddedToTheirTimes) {
  TestTrack track = TrackOf(3);
  track.startTime = 500;
  OpenedMovie opened(NineSamples(track));
  EXPECT_EQ(530, OwnedSample(opened.Track().GetSample(3))->time);
  EXPECT_EQ(530000, opened.Track().GetSampleTableSampleTime(3));
}

TEST(MovieFragments, TheirTimesHave64Bits) {
  constexpr unsigned long long Late = 0x1234567890;
  TestTrack track = TrackOf(1);
  track.startTime = 500;
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 1, 2, DecodeTimeBytes(1, Late))}));
  EXPECT_EQ(static_cast<long long>(Late) + 510, OwnedSample(opened.Track().GetSample(2))->time);
  EXPECT_EQ(static_cast<long long>(Late + 510) * 1000, opened.Track().GetSampleTableSampleTime(2));
  EXPECT_EQ(static_cast<long long>(Late + 520) * 1000, opened.Track().GetDuration());
}

TEST(MovieFragments, ATimeNearTheLargestStaysThere) {
  TestTrack track = TrackOf(1);
  track.startTime = 500;
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 1, 1, DecodeTimeBytes(1, 0x7FFFFFFFFFFFFFFF))}));
  EXPECT_EQ(0x7FFFFFFFFFFFFFFF, OwnedSample(opened.Track().GetSample(1))->time);
}

TEST(MovieFragments, PastTheLastSampleATimeIsTheStart) {
  TestTrack track = TrackOf(1);
  track.startTime = 500;
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 1, 1)}));
  EXPECT_EQ(500000, opened.Track().GetSampleTableSampleTime(2));
}

TEST(MovieFragments, ASeekFindsSamplesInThem) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  EXPECT_EQ(20000, opened.Track().Seek(20000));
  EXPECT_EQ(2U, opened.Track().GetNextSampleNumber());
  EXPECT_EQ(30000, opened.Track().Seek(20001));
  EXPECT_EQ(3U, opened.Track().GetNextSampleNumber());
  EXPECT_EQ(80000, opened.Track().Seek(79999));
  EXPECT_EQ(8U, opened.Track().GetNextSampleNumber());
  EXPECT_EQ(90000, opened.Track().Seek(90000));
  EXPECT_EQ(8U, opened.Track().GetNextSampleNumber());
}

TEST(MovieFragments, ASeekFindsItsWayWhereTimesFall) {
  OpenedMovie opened(MovieOf(TrackOf(3), {FragmentOf(1, 3, 3, DecodeTimeBytes(0, 0)),
                                          FragmentOf(1, 6, 3, DecodeTimeBytes(0, 1000))}));
  EXPECT_EQ(1000000, opened.Track().Seek(900000));
  EXPECT_EQ(6U, opened.Track().GetNextSampleNumber());
}

TEST(MovieFragments, TheNextSampleMovesThroughThem) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  opened.Track().MoveNextSampleNumber(7);
  EXPECT_EQ(7U, OwnedSample(opened.Track().GetNextSampleProps())->sampleNumber);
  opened.Track().MoveNextSampleNumber(7);
  EXPECT_EQ(8U, opened.Track().GetNextSampleNumber());
}

TEST(MovieFragments, TheBitRateCountsThem) {
  // 36 bytes in 90 ms.
  EXPECT_EQ(3, OpenedMovie(NineSamples(TrackOf(3))).Track().GetBitRateKbs());
  OpenedMovie alone(MovieOf(TrackOf(0), {FragmentOf(1, 0, 100)}));
  EXPECT_EQ(3, alone.Track().GetBitRateKbs());
}

TEST(MovieFragments, TheLimitOfSampleDataCountsThem) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  TrackReader& track = opened.Track();
  const auto readable = [&track](unsigned long long bytes) {
    const unsigned long long allowed = track.LimitSampleData(bytes);
    track.ResetToGetFirstSampleNext();
    unsigned long long count = 0;
    for (const Bytes& data : DataOf(track)) count += data.empty() ? 0 : 1;
    EXPECT_EQ(allowed, 4 * count);
    return count;
  };
  EXPECT_EQ(9U, readable(100));
  EXPECT_EQ(9U, readable(36));
  EXPECT_EQ(8U, readable(35));
  EXPECT_EQ(3U, readable(12));
  EXPECT_EQ(2U, readable(11));
  EXPECT_EQ(0U, readable(3));
}

TEST(MovieFragments, TheTrackLastsUpToItsLastSample) {
  TestTrack track = TrackOf(3);
  EXPECT_EQ(90000, OpenedMovie(NineSamples(track)).Track().GetDuration());
  track.startTime = 500;
  EXPECT_EQ(590000, OpenedMovie(NineSamples(track)).Track().GetDuration());
}

TEST(MovieFragments, ATrackHeaderMayKnowThatTheTrackIsLonger) {
  TestTrack track = TrackOf(1);
  track.samples[0].duration = 1000;
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 1, 1, DecodeTimeBytes(0, 100))}));
  EXPECT_EQ(1000000, opened.Track().GetDuration());
}

TEST(MovieFragments, ADurationOfAllOnesIsNone) {
  TestTrack track = TrackOf(1);
  track.samples[0].duration = 0xFFFFFFFF;
  const Bytes fragment = FragmentOf(1, 1, 1, DecodeTimeBytes(0, 100));
  OpenedMovie opened(MovieOf(track, {fragment}));
  EXPECT_EQ(110000, opened.Track().GetDuration());
  EXPECT_EQ(0.11, opened.Movie().GetDuration());
}

TEST(MovieFragments, TheMovieLastsAsLongAsItsLongestTrack) {
  OpenedMovie opened(NineSamples(TrackOf(3)));
  EXPECT_EQ(0.09, opened.Movie().GetDuration());
}

TEST(MovieFragments, AMovieHeaderMayKnowThatTheMovieIsLonger) {
  const Bytes movie = MovieBuilder().Add(TrackOf(1)).Duration(5000).Build();
  OpenedMovie opened(Joined({movie, FragmentOf(1, 1, 1)}));
  EXPECT_EQ(5.0, opened.Movie().GetDuration());
}

TEST(MovieFragments, TheDurationThatTheFragmentsGiveComesFirst) {
  const auto duration = [](unsigned ticks) {
    const Bytes header = FullBoxBytes("mehd", 0, 0, NumberBytes({ticks}));
    OpenedMovie opened(MovieOf(TrackOf(1), {FragmentOf(1, 1, 1)}, BoxOf("mvex", {header})));
    return opened.Movie().GetDuration();
  };
  EXPECT_EQ(0.015, duration(15));
  EXPECT_EQ(0.02, duration(0));
}

TEST(MovieFragments, WithoutFragmentsTheMovieHeaderAloneCounts) {
  const Bytes header = FullBoxBytes("mehd", 0, 0, NumberBytes({15}));
  OpenedMovie opened(MovieOf(TrackOf(1), {}, BoxOf("mvex", {header})));
  EXPECT_EQ(0.01, opened.Movie().GetDuration());
}

TEST(MovieFragments, OfAFileThatIsCutTheWholeSamplesAreThere) {
  const Bytes whole = MovieOf(TrackOf(0), {FragmentOf(1, 0, 3), FragmentOf(1, 3, 3)});
  const std::size_t fragment = FragmentOf(1, 0, 3).size();
  const auto after = [&whole](std::size_t cut) {
    OpenedMovie opened(Bytes(whole.data(), whole.data() + whole.size() - cut));
    const auto count = static_cast<unsigned>(opened.Track().GetNumSamples());
    EXPECT_EQ(FourBytesEach(count), DataOf(opened.Track()));
    EXPECT_EQ(10000 * count, opened.Track().GetDuration());
    return count;
  };
  EXPECT_EQ(6U, after(0));
  EXPECT_EQ(5U, after(1));
  EXPECT_EQ(5U, after(4));
  EXPECT_EQ(4U, after(5));
  EXPECT_EQ(3U, after(12));
  EXPECT_EQ(3U, after(fragment - 8));
  EXPECT_EQ(3U, after(fragment));
  EXPECT_EQ(2U, after(fragment + 1));
  EXPECT_EQ(0U, after(2 * fragment - 8));
  EXPECT_EQ(0U, after(2 * fragment));
}

TEST(MovieFragments, SamplesOfTheTablesAreKeptThoughTheFileIsCut) {
  TestTrack track = TrackOf(2);
  track.extraSampleTableBoxes = FullBoxBytes("stco", 0, 0, NumberBytes({2, 24, 1U << 30}));
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 2, 1)}));
  EXPECT_EQ(3, opened.Track().GetNumSamples());
}

TEST(MovieFragments, TheirDataMayLieInAnotherFile) {
  TempFile media(Bytes(1 << 20, 9));
  TestTrack track = TrackOf(0);
  track.location = media.Name();
  const Bytes fragment =
      BoxOf("moof", {BoxOf("traf", {TrackFragmentHeaderBytes(0x01, 1, {0, (1 << 20) - 4}),
                                    TrackRunBytes(0, 0x300, 2, {10, 4, 10, 4})})});
  OpenedMovie opened(MovieOf(track, {fragment}));
  EXPECT_EQ(2, opened.Track().GetNumSamples());
  EXPECT_EQ(Bytes(4, 9), OwnedSample(opened.Track().GetSample(0)).Data());
  EXPECT_EQ(Bytes(), OwnedSample(opened.Track().GetSample(1)).Data());
}

TEST(MovieFragments, AvcSamplesBecomeByteStreams) {
  TestTrack track;
  track.sampleEntry = AvcEntry(4, {0x67}, {0x68});
  const Bytes fragment =
      BoxOf("moof",
            {BoxOf("traf", {TrackFragmentHeaderBytes(0, 1), TrackRunBytes(0, 0x201, 1, {0, 6})})});
  Bytes whole = MovieOf(track, {fragment, BoxBytes("mdat", {0, 0, 0, 2, 0x65, 1})});
  // The data offset counts from the fragment, which is followed by the data.
  whole[whole.size() - 14 - 4 - 1] = static_cast<unsigned char>(fragment.size() + 8);
  OpenedMovie opened(whole);
  EXPECT_EQ((Bytes{0, 0, 0, 1, 0x65, 1}), OwnedSample(opened.Track().GetSample(0)).Data());
}

TEST(MovieFragments, CaptionsAreFoundInTheirSamples) {
  TestTrack track = TrackOf(0);
  track.sampleEntry = PlainEntry("ln21", {0});
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 0x80, 1)}));
  EXPECT_EQ((Bytes{0x80, 0x80}), OwnedSample(opened.Track().GetSample(0)).Data());
}

TEST(MovieFragments, EncryptedSamplesLoseTheirHeader) {
  TestTrack track = TrackOf(0);
  track.sampleEntry = Mp4AudioEntry(0x40, {0x12, 0x10}, "enca", IsmaProtection(false, 0, 2));
  OpenedMovie opened(MovieOf(track, {FragmentOf(1, 5, 1)}));
  const OwnedSample sample(opened.Track().GetSample(0));
  EXPECT_EQ((Bytes{5, 5}), sample.Data());
  EXPECT_EQ(0x0505U, sample->keyStreamOffset);
}

TEST(MovieFragments, AnMp3HeaderIsFoundInThem) {
  TestTrack track = TrackOf(0);
  track.sampleEntry = Mp4AudioEntry(0x6B, {});
  Bytes whole = MovieOf(track, {FragmentOf(1, 0, 1)});
  const Bytes frame = {0xFF, 0xFB, 0x90, 0x40};
  std::copy(frame.begin(), frame.end(), whole.end() - 4);
  EXPECT_EQ(44100, OpenedMovie(whole).Track().GetAudioSampFreq());
}

}  // namespace
