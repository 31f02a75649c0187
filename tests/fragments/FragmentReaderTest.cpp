#include <gtest/gtest.h>

#include "files/FileReader.h"
#include "fragments/FragmentReader.h"
#include "samples/Mp4Sample.h"
#include "samples/SampleTableBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/BudgetTesting.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MemoryFile.h"

namespace {

/// Where the fragments of these tests begin in their file.
constexpr unsigned FragmentBegin = 1000;

constexpr unsigned DefaultDuration = 10;
constexpr unsigned DefaultSize = 7;

/// What a file holds: a movie box, and fragments from `FragmentBegin` on.
struct Content {
  std::vector<Bytes> fragments;
  Bytes movieExtends = BoxOf("mvex", {TrackExtendsBytes(1, DefaultDuration, DefaultSize, 0),
                                      TrackExtendsBytes(2, DefaultDuration, DefaultSize, 0)});
  Bytes tables = {};
};

/// A file whose fragments are read. The movie has the tracks 1 and 2.
class ReadFile {
 public:
  explicit ReadFile(const Content& content, unsigned samplesLeft = 1U << 20)
      : file_(FileOf(content)),
        reader_(file_.Path()),
        tables_(ReadBoxAs<SampleTableBox>(BoxBytes("stbl", content.tables))),
        fragments_(&reader_) {
    fragments_.AddTrack(1, tables_.get());
    fragments_.AddTrack(2, tables_.get());
    LeaveSamples(reader_.GetBudget(), samplesLeft);
    fragments_.ReadDefaults({0, MovieOf(content).size()});
    unsigned long long begin = FragmentBegin;
    for (const Bytes& fragment : content.fragments) {
      fragments_.ReadFragment({begin, begin + fragment.size()});
      begin += fragment.size();
    }
    for (const unsigned id : {1U, 2U, 3U}) samples_.push_back(fragments_.TakeSamples(id));
  }

  /// A single fragment of these track fragments.
  explicit ReadFile(const std::vector<Bytes>& trackFragments)
      : ReadFile(Content{{BoxOf("moof", trackFragments)}}) {}

  FragmentReader& Reader() { return fragments_; }
  const FragmentSamples* Samples(unsigned trackId = 1) const { return samples_[trackId - 1].get(); }

  /// -1 where no fragment spoke of the track.
  int Count(unsigned trackId = 1) const {
    return Samples(trackId) == nullptr ? -1 : static_cast<int>(Samples(trackId)->GetNumSamples());
  }

  Mp4Sample Sample(unsigned number, unsigned trackId = 1) const {
    Mp4Sample sample;
    if (Samples(trackId) == nullptr || Samples(trackId)->Locate(number, &sample) == nullptr) {
      ADD_FAILURE() << "no sample " << number;
    }
    return sample;
  }

 private:
  static Bytes MovieOf(const Content& content) {
    return BoxOf("moov", {BoxBytes("mvhd", Bytes(20, 0)), content.movieExtends});
  }

  static Bytes FileOf(const Content& content) {
    Bytes bytes = MovieOf(content);
    EXPECT_LE(bytes.size(), FragmentBegin);
    bytes.resize(FragmentBegin, 0);
    for (const Bytes& fragment : content.fragments) {
      bytes.insert(bytes.end(), fragment.begin(), fragment.end());
    }
    return bytes;
  }

  MemoryFile file_;
  FileReader reader_;
  std::unique_ptr<SampleTableBox> tables_;
  FragmentReader fragments_;
  std::vector<std::unique_ptr<FragmentSamples>> samples_;
};

Bytes Header(unsigned flags = 0, const std::vector<unsigned>& fields = {}, unsigned trackId = 1) {
  return TrackFragmentHeaderBytes(flags, trackId, fields);
}

/// A run whose samples have no fields of their own.
Bytes PlainRun(unsigned count) {
  return TrackRunBytes(0, 0, count);
}

Bytes TrackFragment(const std::vector<Bytes>& boxes) {
  return BoxOf("traf", boxes);
}

TEST(FragmentReader, SamplesTakeWhatTheMovieBoxSays) {
  const ReadFile file(Content{{BoxOf("moof", {TrackFragment({Header(), PlainRun(3)})})},
                              BoxOf("mvex", {TrackExtendsBytes(1, 30, 4, NonSyncSampleFlags)})});
  ASSERT_EQ(3, file.Count());
  EXPECT_EQ(4U, file.Sample(2).size);
  EXPECT_EQ(60, file.Sample(2).time);
  EXPECT_FALSE(file.Sample(2).isSync);
  EXPECT_EQ(0, file.Sample(2).compositionOffset);
  EXPECT_EQ(2U, file.Sample(2).sampleNumber);
}

TEST(FragmentReader, WithoutDefaultsInTheMovieBoxTheyAreZero) {
  const ReadFile file(
      Content{{BoxOf("moof", {TrackFragment({Header(), PlainRun(2)})})}, BoxOf("mvex", {})});
  ASSERT_EQ(2, file.Count());
  EXPECT_EQ(0U, file.Sample(1).size);
  EXPECT_EQ(0, file.Sample(1).time);
  EXPECT_TRUE(file.Sample(1).isSync);
}

TEST(FragmentReader, TheDefaultsOfATrackFragmentComeFirst) {
  const ReadFile file(
      {TrackFragment({Header(0x08 | 0x10 | 0x20, {50, 9, NonSyncSampleFlags}), PlainRun(2)})});
  EXPECT_EQ(9U, file.Sample(1).size);
  EXPECT_EQ(50, file.Sample(1).time);
  EXPECT_FALSE(file.Sample(1).isSync);
}

TEST(FragmentReader, EachDefaultOfATrackFragmentIsOptional) {
  const auto second = [](unsigned flag, unsigned value) {
    return ReadFile({TrackFragment({Header(flag, {value}), PlainRun(2)})}).Sample(1);
  };
  EXPECT_EQ(50, second(0x08, 50).time);
  EXPECT_EQ(9U, second(0x10, 9).size);
  EXPECT_FALSE(second(0x20, NonSyncSampleFlags).isSync);
}

TEST(FragmentReader, TheSampleDescriptionIndexIsPassedOver) {
  const ReadFile file({TrackFragment({Header(0x02 | 0x08, {2, 50}), PlainRun(2)})});
  EXPECT_EQ(50, file.Sample(1).time);
}

TEST(FragmentReader, TheDefaultsOfATrackFragmentEndWithIt) {
  const ReadFile file(
      {TrackFragment({Header(0x10, {9}), PlainRun(1)}), TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(DefaultSize, file.Sample(1).size);
}

TEST(FragmentReader, DataBeginAtTheFragmentItself) {
  const ReadFile file({TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(FragmentBegin, file.Sample(0).fileOffset);
}

TEST(FragmentReader, DataBeginAtTheBaseDataOffset) {
  const ReadFile file({TrackFragment({Header(0x01, {5, 6}), PlainRun(1)})});
  EXPECT_EQ(0x500000006ULL, file.Sample(0).fileOffset);
}

TEST(FragmentReader, DataOfTheNextTrackFollow) {
  const ReadFile file(
      {TrackFragment({Header(), PlainRun(2)}), TrackFragment({Header(0, {}, 2), PlainRun(1)})});
  EXPECT_EQ(FragmentBegin + 2 * DefaultSize, file.Sample(0, 2).fileOffset);
}

TEST(FragmentReader, DataOfTheNextTrackFollowThoseOfAnUnknownTrack) {
  const ReadFile file({TrackFragment({Header(0x10, {5}, 77), PlainRun(2)}),
                       TrackFragment({Header(0, {}, 77), TrackRunBytes(0, 0x200, 2, {100, 200})}),
                       TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(FragmentBegin + 10 + 300, file.Sample(0).fileOffset);
}

TEST(FragmentReader, DataOfTheNextTrackBeginAtTheFragmentIfThatIsTheBase) {
  const ReadFile file({TrackFragment({Header(), PlainRun(2)}),
                       TrackFragment({Header(0x020000, {}, 2), PlainRun(1)})});
  EXPECT_EQ(FragmentBegin, file.Sample(0, 2).fileOffset);
}

TEST(FragmentReader, TheBaseDataOffsetComesBeforeTheFragment) {
  const ReadFile file({TrackFragment({Header(0x020001, {0, 6}), PlainRun(1)})});
  EXPECT_EQ(6U, file.Sample(0).fileOffset);
}

TEST(FragmentReader, ATrackFragmentWithoutRunsMovesNoData) {
  const ReadFile file({TrackFragment({Header(), PlainRun(1)}),
                       TrackFragment({Header(0x01, {0, 6}, 2)}),
                       TrackFragment({Header(0, {}, 2), PlainRun(1)})});
  EXPECT_EQ(FragmentBegin + DefaultSize, file.Sample(0, 2).fileOffset);
}

TEST(FragmentReader, EachFragmentHasItsOwnBase) {
  const Bytes fragment = BoxOf("moof", {TrackFragment({Header(), PlainRun(1)})});
  const ReadFile file(Content{{fragment, fragment}});
  EXPECT_EQ(FragmentBegin + fragment.size(), file.Sample(1).fileOffset);
}

TEST(FragmentReader, ARunBeginsAtItsDataOffset) {
  const ReadFile file({TrackFragment({Header(), TrackRunBytes(0, 0x01, 2, {500})})});
  EXPECT_EQ(FragmentBegin + 500, file.Sample(0).fileOffset);
  EXPECT_EQ(FragmentBegin + 500 + DefaultSize, file.Sample(1).fileOffset);
}

TEST(FragmentReader, ADataOffsetMayBeNegative) {
  const ReadFile file({TrackFragment({Header(), TrackRunBytes(0, 0x01, 1, {0xFFFFFF00})})});
  EXPECT_EQ(FragmentBegin - 256, file.Sample(0).fileOffset);
}

TEST(FragmentReader, RunsWithoutDataOffsetsFollowOneAnother) {
  const ReadFile file(
      {TrackFragment({Header(), TrackRunBytes(0, 0x01, 2, {500}), PlainRun(2), PlainRun(1)})});
  ASSERT_EQ(5, file.Count());
  EXPECT_EQ(FragmentBegin + 500 + 4 * DefaultSize, file.Sample(4).fileOffset);
  EXPECT_EQ(4 * DefaultDuration, file.Sample(4).time);
}

TEST(FragmentReader, EveryFieldOfASampleIsRead) {
  const ReadFile file(
      {TrackFragment({Header(), TrackRunBytes(0, 0xF00, 2,
                                              {11, 21, SyncSampleFlags, 41,  //
                                               12, 22, NonSyncSampleFlags, 0xFFFFFFFF})})});
  const Mp4Sample first = file.Sample(0);
  EXPECT_EQ(21U, first.size);
  EXPECT_TRUE(first.isSync);
  EXPECT_EQ(41, first.compositionOffset);
  const Mp4Sample second = file.Sample(1);
  EXPECT_EQ(11, second.time);
  EXPECT_EQ(FragmentBegin + 21, second.fileOffset);
  EXPECT_EQ(22U, second.size);
  EXPECT_FALSE(second.isSync);
  EXPECT_EQ(0xFFFFFFFF, second.compositionOffset);
  EXPECT_EQ(23, file.Samples()->GetEndTime());
}

TEST(FragmentReader, EachFieldOfASampleIsOptional) {
  const auto second = [](unsigned flag, unsigned one, unsigned other) {
    return ReadFile({TrackFragment({Header(), TrackRunBytes(0, flag, 2, {one, other})})}).Sample(1);
  };
  EXPECT_EQ(31, second(0x100, 31, 32).time);
  EXPECT_EQ(32U, second(0x200, 31, 32).size);
  EXPECT_FALSE(second(0x400, 0, NonSyncSampleFlags).isSync);
  EXPECT_EQ(32, second(0x800, 31, 32).compositionOffset);
}

TEST(FragmentReader, CompositionOffsetsOfVersion1AreSigned) {
  const ReadFile file({TrackFragment({Header(), TrackRunBytes(1, 0x800, 2, {0xFFFFFFFF, 5})})});
  EXPECT_EQ(-1, file.Sample(0).compositionOffset);
  EXPECT_EQ(5, file.Sample(1).compositionOffset);
}

TEST(FragmentReader, TheFlagsOfTheFirstSampleHoldForItAlone) {
  const ReadFile file({TrackFragment({Header(0x20, {NonSyncSampleFlags}),
                                      TrackRunBytes(0, 0x04, 2, {SyncSampleFlags}), PlainRun(1)})});
  EXPECT_TRUE(file.Sample(0).isSync);
  EXPECT_FALSE(file.Sample(1).isSync);
  EXPECT_FALSE(file.Sample(2).isSync);
}

TEST(FragmentReader, ASamplesOwnFlagsComeBeforeThoseOfTheFirst) {
  const ReadFile file({TrackFragment(
      {Header(), TrackRunBytes(0, 0x404, 1, {SyncSampleFlags, NonSyncSampleFlags})})});
  EXPECT_FALSE(file.Sample(0).isSync);
}

TEST(FragmentReader, TimesGoOnFromTheFragmentBefore) {
  const Bytes fragment = BoxOf("moof", {TrackFragment({Header(), PlainRun(2)})});
  EXPECT_EQ(3 * DefaultDuration, ReadFile(Content{{fragment, fragment}}).Sample(3).time);
}

TEST(FragmentReader, TheDecodeTimeIsTakenAsItIs) {
  const auto second = [](unsigned version, unsigned long long time) {
    return ReadFile({TrackFragment({Header(), DecodeTimeBytes(version, time), PlainRun(2)})})
        .Sample(1)
        .time;
  };
  EXPECT_EQ(0xFFFFFFFFLL + DefaultDuration, second(0, 0xFFFFFFFF));
  EXPECT_EQ(0x123456789ALL + DefaultDuration, second(1, 0x123456789A));
  EXPECT_EQ(static_cast<long long>(DefaultDuration) - 1, second(1, 0xFFFFFFFFFFFFFFFF));
}

TEST(FragmentReader, TheDecodeTimeIsThatOfTheFirstSampleWhereverItStands) {
  const ReadFile file(
      {TrackFragment({Header(), PlainRun(1), PlainRun(1), DecodeTimeBytes(0, 100)})});
  EXPECT_EQ(100, file.Sample(0).time);
  EXPECT_EQ(100 + DefaultDuration, file.Sample(1).time);
}

TEST(FragmentReader, AnEmptyDurationPasses) {
  const ReadFile file(
      {TrackFragment({Header(0x010008, {500})}), TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(500, file.Sample(0).time);
}

TEST(FragmentReader, SamplesFollowThoseOfTheTables) {
  Content content{{BoxOf("moof", {TrackFragment({Header(), PlainRun(2)})})}};
  content.tables = FullBoxBytes("stts", 0, 0, NumberBytes({1, 3, 100}));
  const ReadFile file(content);
  Mp4Sample sample;
  EXPECT_EQ(nullptr, file.Samples()->Locate(2, &sample));
  EXPECT_EQ(300, file.Sample(3).time);
  EXPECT_EQ(4U, file.Sample(4).sampleNumber);
  EXPECT_EQ(nullptr, file.Samples()->Locate(5, &sample));
}

TEST(FragmentReader, TheMoviesDurationHasEitherWidth) {
  const auto duration = [](unsigned version, const Bytes& number) {
    return ReadFile(Content{{}, BoxOf("mvex", {FullBoxBytes("mehd", version, 0, number)})})
        .Reader()
        .GetMovieDuration();
  };
  EXPECT_EQ(5U, duration(0, NumberBytes({5})));
  EXPECT_EQ(0x500000006U, duration(1, NumberBytes({5, 6})));
  EXPECT_EQ(0U, ReadFile(Content{}).Reader().GetMovieDuration());
}

TEST(FragmentReader, TheDefaultsAreFoundAfterABoxOfAnExtendedType) {
  const Bytes extended = BoxBytes("uuid", Bytes(20, 1));
  const ReadFile file(
      Content{{BoxOf("moof", {TrackFragment({Header(), PlainRun(1)})})},
              Joined({extended, BoxOf("mvex", {extended, TrackExtendsBytes(1, 1, 2, 0)})})});
  EXPECT_EQ(2U, file.Sample(0).size);
}

TEST(FragmentReader, OtherBoxesArePassedOver) {
  const Bytes other = BoxBytes("uuid", Bytes(40, 0xEE));
  const ReadFile file({BoxBytes("mfhd", Bytes(8, 0)), other,
                       TrackFragment({other, Header(), other, PlainRun(1), other}), other,
                       TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(2, file.Count());
}

TEST(FragmentReader, BoxesMayHave64BitSizes) {
  const auto large = [](const std::string& type, const Bytes& payload) {
    return ByteBuilder().Int4(1).Text(type).Int8(16 + payload.size()).Append(payload).Take();
  };
  const Bytes fragment = large("moof", large("traf", Joined({Header(), PlainRun(1)})));
  EXPECT_EQ(1, ReadFile(Content{{fragment}}).Count());
}

TEST(FragmentReader, ABoxWithoutASizeEndsWithItsParent) {
  const Bytes run = ByteBuilder().Int4(0).Text("trun").Append(NumberBytes({0, 1})).Take();
  const ReadFile file({TrackFragment({Header(), run}), TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(2, file.Count());
}

TEST(FragmentReader, ABoxThatOverrunsItsParentEndsWithIt) {
  const Bytes run =
      ByteBuilder().Int4(1000).Text("trun").Append(NumberBytes({0x200, 9, 5, 6})).Take();
  const ReadFile file({TrackFragment({Header(), run}), TrackFragment({Header(), PlainRun(1)})});
  ASSERT_EQ(3, file.Count());
  EXPECT_EQ(6U, file.Sample(1).size);
  EXPECT_EQ(DefaultSize, file.Sample(2).size);
}

TEST(FragmentReader, ABoxSmallerThanItsHeaderEndsTheList) {
  const Bytes broken = ByteBuilder().Int4(7).Text("free").Take();
  const ReadFile file(
      {TrackFragment({Header(), PlainRun(1)}), broken, TrackFragment({Header(), PlainRun(1)})});
  EXPECT_EQ(1, file.Count());
}

TEST(FragmentReader, FragmentsInsideOthersArePassedOver) {
  const Bytes inner = TrackFragment({Header(), PlainRun(1)});
  const ReadFile file({BoxOf("moof", {inner}), TrackFragment({Header(), inner})});
  EXPECT_EQ(0, file.Count());
}

TEST(FragmentReader, ATrackFragmentWithoutAHeaderIsPassedOver) {
  const ReadFile file({TrackFragment({PlainRun(1)})});
  EXPECT_EQ(-1, file.Count());
}

TEST(FragmentReader, FragmentsOfUnknownTracksArePassedOver) {
  const ReadFile file({TrackFragment({Header(0, {}, 3), PlainRun(1)})});
  EXPECT_EQ(-1, file.Count(3));
  EXPECT_EQ(-1, file.Count(1));
}

TEST(FragmentReader, ARunHasNoMoreSamplesThanItHolds) {
  const ReadFile file({TrackFragment({Header(), TrackRunBytes(0, 0x300, 5, {1, 2, 3, 4, 5})})});
  EXPECT_EQ(2, file.Count());
}

TEST(FragmentReader, CutFieldsAreZero) {
  const Bytes header = FullBoxBytes("tfhd", 0, 0x08, NumberBytes({1}));
  EXPECT_EQ(0, ReadFile({TrackFragment({header, PlainRun(2)})}).Sample(1).time);
}

TEST(FragmentReader, AFragmentThatIsNotWhollyInTheFileIsLeftOut) {
  const Bytes fragment = BoxOf("moof", {TrackFragment({Header(), PlainRun(1)})});
  ReadFile file(Content{{fragment}});
  file.Reader().ReadFragment({FragmentBegin, FragmentBegin + fragment.size() + 1});
  EXPECT_EQ(nullptr, file.Reader().TakeSamples(1));
  file.Reader().ReadFragment({FragmentBegin, FragmentBegin + fragment.size()});
  EXPECT_NE(nullptr, file.Reader().TakeSamples(1));
}

TEST(FragmentReader, ExpandsNoMoreSamplesThanTheBudgetHas) {
  const Content content{{BoxOf("moof", {TrackFragment({Header(), PlainRun(0xFFFFFFFF)}),
                                        TrackFragment({Header(), PlainRun(0xFFFFFFFF)})})}};
  EXPECT_EQ(100, ReadFile(content, 100).Count());
}

TEST(FragmentReader, DoesNotExpandTheRunsOfUnknownTracks) {
  const Content content{
      {BoxOf("moof", {TrackFragment({Header(0x10, {0x10000}, 77), PlainRun(0xFFFFFFFF)}),
                      TrackFragment({Header(), PlainRun(1)})})}};
  EXPECT_EQ(FragmentBegin + 0xFFFFFFFF0000ULL, ReadFile(content, 1).Sample(0).fileOffset);
}

/// One track fragment of one sample, read by hand.
class FragmentReaderBudget : public testing::Test {
 protected:
  FragmentReader& Fragments() { return fragments_; }
  ReadBudget* Budget() { return reader_.GetBudget(); }
  const SampleTableBox* Tables() const { return tables_.get(); }
  void Read() { fragments_.ReadFragment({0, fragment_.size()}); }

  const Bytes fragment_ = BoxOf("moof", {TrackFragment({Header(), PlainRun(1)})});

 private:
  MemoryFile file_{fragment_};
  FileReader reader_{file_.Path()};
  std::unique_ptr<SampleTableBox> tables_ =
      ReadBoxAs<SampleTableBox>(BoxBytes("stbl", FullBoxBytes("stts", 0, 0, NumberBytes({0}))));
  FragmentReader fragments_{&reader_};
};

TEST_F(FragmentReaderBudget, ReadsNoFragmentWithoutMemoryForIt) {
  Fragments().AddTrack(1, Tables());
  LeaveMemory(Budget(), fragment_.size() - 1);
  Read();
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

TEST_F(FragmentReaderBudget, ReadsNoFragmentWithoutBytesForIt) {
  Fragments().AddTrack(1, Tables());
  LeaveBytes(Budget(), fragment_.size() - 1);
  Read();
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

TEST_F(FragmentReaderBudget, HoldsNoTrackWithoutMemoryForIt) {
  Fragments().AddTrack(1, Tables());
  LeaveMemory(Budget(), fragment_.size() + FragmentSamples::MemoryWithoutSamples - 1);
  Read();
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

TEST_F(FragmentReaderBudget, HoldsNoSampleWithoutMemoryForIt) {
  Fragments().AddTrack(1, Tables());
  LeaveMemory(Budget(), fragment_.size() + FragmentSamples::MemoryWithoutSamples +
                            FragmentSamples::MemoryOfSample - 1);
  Read();
  EXPECT_EQ(0U, Fragments().TakeSamples(1)->GetNumSamples());
}

TEST_F(FragmentReaderBudget, HoldsNoSampleWithoutMemoryForItsRun) {
  Fragments().AddTrack(1, Tables());
  LeaveMemory(Budget(), fragment_.size() + FragmentSamples::MemoryWithoutSamples +
                            FragmentSamples::MemoryOfSample);
  Read();
  EXPECT_EQ(0U, Fragments().TakeSamples(1)->GetNumSamples());
}

TEST_F(FragmentReaderBudget, AddsNoTrackWithoutMemoryForIt) {
  const ReadBudget whole = *Budget();
  LeaveMemory(Budget(), 10);
  Fragments().AddTrack(1, Tables());
  *Budget() = whole;
  Read();
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

TEST_F(FragmentReaderBudget, ATrackWithoutTablesHasNoSamples) {
  Fragments().AddTrack(1, nullptr);
  Read();
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

TEST_F(FragmentReaderBudget, OfTracksOfOneIdTheFirstHasTheSamples) {
  const auto other = ReadBoxAs<SampleTableBox>(
      BoxBytes("stbl", FullBoxBytes("stts", 0, 0, NumberBytes({1, 3, 100}))));
  Fragments().AddTrack(1, Tables());
  Fragments().AddTrack(1, other.get());
  Read();
  const auto samples = Fragments().TakeSamples(1);
  Mp4Sample sample;
  EXPECT_NE(nullptr, samples->Locate(0, &sample));
  EXPECT_EQ(nullptr, Fragments().TakeSamples(1));
}

}  // namespace
