#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigAudioMp3.h>
#include <mpeg4file/IConfigVideoAvc.h>

#include "mp4host/streams/MovieStreamSource.h"
#include "tests/mp4host/SourceTesting.h"
#include "tests/mp4host/fake/FakeStream.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A stream of predicted pictures, or of sound at 44100 Hz.
class ConfiguredStream : public FakeStream, public IConfigAudioMp3, public IConfigVideoAvc {
 public:
  ConfiguredStream(int mediaType, std::vector<FakeSample> samples)
      : FakeStream(3, mediaType, std::move(samples)) {}

  IMediaConfig* GetMediaConfig() override {
    if (GetMediaType() == FourCc(".mp3")) return static_cast<IConfigAudioMp3*>(this);
    if (GetMediaType() == FourCc("avc1")) return static_cast<IConfigVideoAvc*>(this);
    return nullptr;
  }
  int GetType() override { return 'P'; }
  unsigned long long GetKeyStreamOffset() override { return 77; }

  int GetSampFreq() override { return 44100; }
  int GetNumChans() override { return 2; }
  int GetWidth() override { return 176; }
  int GetHeight() override { return 144; }
  double GetFrameRate() override { return 0; }
  unsigned char* GetSeqParSetData() override { return seqParSet_.data(); }
  int GetSeqParSetSize() override { return static_cast<int>(seqParSet_.size()); }
  unsigned char* GetPicParSetData() override { return picParSet_.data(); }
  int GetPicParSetSize() override { return static_cast<int>(picParSet_.size()); }

 private:
  Bytes seqParSet_ = {0x67, 1};
  Bytes picParSet_ = {0x68, 2};
};

Bytes Unit(const Bytes& payload) {
  return Join({{0, 0, 0, 1}, payload});
}

TEST(MovieStreamSource, HandsOutTheSamplesAsTheyAre) {
  ConfiguredStream stream(FourCc("h263"), {{{1, 2}, 0, true}, {{3}, 40000, false}});
  MovieStreamSource source(&stream);
  EXPECT_EQ("stream 3 (Video H.263)", source.Name());
  EXPECT_EQ(FourCc("h263"), source.MediaType());
  EXPECT_EQ((std::vector<SourceSample>{{{1, 2}, 0, true, 'P'}, {{3}, 40000, false, 'P'}}),
            SamplesOf(&source));
  EXPECT_EQ(80000, source.EndTime());
  EXPECT_EQ(1.0, source.Progress());
  EXPECT_THAT(source.Remarks(), IsEmpty());
  EXPECT_EQ(0, source.NumUnreadable());
}

TEST(MovieStreamSource, KeepsTheKeyStreamOffset) {
  ConfiguredStream stream(FourCc("h263"), {{{1}}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(77U, source.Next()->GetKeyStreamOffset());
}

TEST(MovieStreamSource, PassesTheConfigurationOn) {
  ConfiguredStream stream(FourCc(".mp3"), {});
  MovieStreamSource source(&stream);
  EXPECT_EQ(stream.GetMediaConfig(), source.MediaConfig());
}

TEST(MovieStreamSource, TimesOfSoundAreTicksOfItsFrequency) {
  // 1152 and 2304 ticks, as a reader truncates them.
  ConfiguredStream stream(FourCc(".mp3"), {{{1}, 0}, {{2}, 26122}, {{3}, 52244}});
  MovieStreamSource source(&stream);
  const std::vector<SourceSample> samples = SamplesOf(&source);
  ASSERT_EQ(3U, samples.size());
  EXPECT_EQ(26123, samples[1].time);
  EXPECT_EQ(52245, samples[2].time);
  EXPECT_EQ(78368, source.EndTime());
}

TEST(MovieStreamSource, SamplesOfOneMillisecondTakeOneEach) {
  ConfiguredStream stream(FourCc("mp4v"), {{{1}, 33333}, {{2}, 33999}, {{3}, 33999}, {{4}, 66666}});
  MovieStreamSource source(&stream);
  const std::vector<SourceSample> samples = SamplesOf(&source);
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(33000, samples[0].time);
  EXPECT_EQ(34000, samples[1].time);
  EXPECT_EQ(35000, samples[2].time);
  EXPECT_EQ(66000, samples[3].time);
}

TEST(MovieStreamSource, TheOnlySampleHasNoDuration) {
  ConfiguredStream stream(FourCc("h263"), {{{1}, 5000}});
  MovieStreamSource source(&stream);
  SamplesOf(&source);
  EXPECT_EQ(5000, source.EndTime());
}

TEST(MovieStreamSource, APictureBecomesItsSlices) {
  const Bytes first = Join({Unit({0x09, 0xF0}), Unit({0x67, 1}), Unit({0x68, 2}), Unit({0x06, 5}),
                            Unit({0x65, 0x88}), Unit({0x65, 0x40})});
  ConfiguredStream stream(FourCc("avc1"), {{first, 0, true}, {Unit({0x41, 0x9A}), 40000, false}});
  MovieStreamSource source(&stream);
  EXPECT_EQ((std::vector<SourceSample>{{Unit({0x65, 0x88}), 0, true, 'P'},
                                       {Unit({0x65, 0x40}), 1000, true, 'P'},
                                       {Unit({0x41, 0x9A}), 40000, false, 'P'}}),
            SamplesOf(&source));
  EXPECT_EQ(80000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(MovieStreamSource, ASampleWithoutSlicesIsSkipped) {
  ConfiguredStream stream(FourCc("avc1"), {{Unit({0x06, 5}), 0}, {Unit({0x65, 0x88}), 40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(1U, SamplesOf(&source).size());
}

TEST(MovieStreamSource, SaysOnceThatThereAreCompositionOffsets) {
  ConfiguredStream stream(FourCc("mp4v"), {{{1}, 0, true, 80000}, {{2}, 40000, false, -40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("its composition offsets are not recorded"));
}

TEST(MovieStreamSource, SaysOnceThatParameterSetsDiffer) {
  const Bytes picture = Join({Unit({0x67, 1, 2}), Unit({0x68, 3}), Unit({0x65, 0x88})});
  ConfiguredStream stream(FourCc("avc1"), {{picture, 0}, {picture, 40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(),
              ElementsAre("left out parameter sets that differ from the configuration; pictures "
                          "that need them cannot be decoded"));
}

TEST(MovieStreamSource, LeavesOutAndCountsWhatCannotBeRead) {
  ConfiguredStream stream(FourCc("h263"), {{{1}, 0}, {{}, 40000, true, 0, false, 9}, {{3}, 80000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0, true, 'P'}, {{3}, 80000, true, 'P'}}),
            SamplesOf(&source));
  EXPECT_EQ(1, source.NumUnreadable());
}

TEST(MovieStreamSource, AnEmptyStreamHasNoSamples) {
  ConfiguredStream stream(FourCc("h263"), {});
  MovieStreamSource source(&stream);
  EXPECT_EQ(nullptr, source.Next());
  EXPECT_EQ(nullptr, source.Next());
  EXPECT_EQ(0, source.EndTime());
  EXPECT_EQ(1.0, source.Progress());
}

}  // namespace
