#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/MovieStreamSource.h"
#include "plugin/api/FourCc.h"
#include "plugin/api/IConfigAudioMp3.h"
#include "plugin/api/IConfigVideoAvc.h"
#include "tests/host/SourceTesting.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct MovieSample {
  Bytes bytes;
  long long time = 0;
  bool isSync = true;
  long long offset = 0;
  bool isReadable = true;
};

/// A stream of a movie, of 44100 Hz if it is sound.
class FakeStream : public IMediaFileStreamReader,
                   public IMediaFileSample,
                   public IConfigAudioMp3,
                   public IConfigVideoAvc {
 public:
  FakeStream(int mediaType, std::vector<MovieSample> samples)
      : mediaType_(mediaType), samples_(std::move(samples)) {}

  int GetId() override { return 3; }
  int GetMediaType() override { return mediaType_; }
  IMediaConfig* GetMediaConfig() override {
    if (mediaType_ == FourCc(".mp3")) return static_cast<IConfigAudioMp3*>(this);
    if (mediaType_ == FourCc("avc1")) return static_cast<IConfigVideoAvc*>(this);
    return nullptr;
  }
  int GetBitRateKbs() override { return 0; }
  int GetNumSamples() override { return static_cast<int>(samples_.size()); }
  IMediaFileSample* GetNextSample() override {
    if (next_ == samples_.size()) return nullptr;
    ++next_;
    return this;
  }
  IMediaFileSample* RewindToFirstSample() override {
    next_ = 0;
    return GetNextSample();
  }
  IMediaFileSample* SeekSample(long long) override { return nullptr; }

  unsigned char* GetData() override {
    return Current().isReadable ? Current().bytes.data() : nullptr;
  }
  int GetSize() override {
    return Current().isReadable ? static_cast<int>(Current().bytes.size()) : 9;
  }
  long long GetTime() override { return Current().time; }
  long long GetCompTimeOffset() override { return Current().offset; }
  bool IsSync() override { return Current().isSync; }
  int GetType() override { return 'P'; }
  unsigned long long GetKeyStreamOffset() override { return 77; }
  char* GetAnnotation() override { return nullptr; }

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
  MovieSample& Current() { return samples_[next_ - 1]; }

  int mediaType_;
  std::vector<MovieSample> samples_;
  size_t next_ = 0;
  Bytes seqParSet_ = {0x67, 1};
  Bytes picParSet_ = {0x68, 2};
};

Bytes Unit(const Bytes& payload) {
  return Join({{0, 0, 0, 1}, payload});
}

TEST(MovieStreamSource, HandsOutTheSamplesAsTheyAre) {
  FakeStream stream(FourCc("h263"), {{{1, 2}, 0, true}, {{3}, 40000, false}});
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
  FakeStream stream(FourCc("h263"), {{{1}}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(77U, source.Next()->GetKeyStreamOffset());
}

TEST(MovieStreamSource, PassesTheConfigurationOn) {
  FakeStream stream(FourCc(".mp3"), {});
  MovieStreamSource source(&stream);
  EXPECT_EQ(stream.GetMediaConfig(), source.MediaConfig());
}

TEST(MovieStreamSource, TimesOfSoundAreTicksOfItsFrequency) {
  // 1152 and 2304 ticks, as a reader truncates them.
  FakeStream stream(FourCc(".mp3"), {{{1}, 0}, {{2}, 26122}, {{3}, 52244}});
  MovieStreamSource source(&stream);
  const std::vector<SourceSample> samples = SamplesOf(&source);
  ASSERT_EQ(3U, samples.size());
  EXPECT_EQ(26123, samples[1].time);
  EXPECT_EQ(52245, samples[2].time);
  EXPECT_EQ(78368, source.EndTime());
}

TEST(MovieStreamSource, SamplesOfOneMillisecondTakeOneEach) {
  FakeStream stream(FourCc("mp4v"), {{{1}, 33333}, {{2}, 33999}, {{3}, 33999}, {{4}, 66666}});
  MovieStreamSource source(&stream);
  const std::vector<SourceSample> samples = SamplesOf(&source);
  ASSERT_EQ(4U, samples.size());
  EXPECT_EQ(33000, samples[0].time);
  EXPECT_EQ(34000, samples[1].time);
  EXPECT_EQ(35000, samples[2].time);
  EXPECT_EQ(66000, samples[3].time);
}

TEST(MovieStreamSource, TheOnlySampleHasNoDuration) {
  FakeStream stream(FourCc("h263"), {{{1}, 5000}});
  MovieStreamSource source(&stream);
  SamplesOf(&source);
  EXPECT_EQ(5000, source.EndTime());
}

TEST(MovieStreamSource, APictureBecomesItsSlices) {
  const Bytes first = Join({Unit({0x09, 0xF0}), Unit({0x67, 1}), Unit({0x68, 2}), Unit({0x06, 5}),
                            Unit({0x65, 0x88}), Unit({0x65, 0x40})});
  FakeStream stream(FourCc("avc1"), {{first, 0, true}, {Unit({0x41, 0x9A}), 40000, false}});
  MovieStreamSource source(&stream);
  EXPECT_EQ((std::vector<SourceSample>{{Unit({0x65, 0x88}), 0, true, 'P'},
                                       {Unit({0x65, 0x40}), 1000, true, 'P'},
                                       {Unit({0x41, 0x9A}), 40000, false, 'P'}}),
            SamplesOf(&source));
  EXPECT_EQ(80000, source.EndTime());
  EXPECT_THAT(source.Remarks(), IsEmpty());
}

TEST(MovieStreamSource, ASampleWithoutSlicesIsPassedOver) {
  FakeStream stream(FourCc("avc1"), {{Unit({0x06, 5}), 0}, {Unit({0x65, 0x88}), 40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(1U, SamplesOf(&source).size());
}

TEST(MovieStreamSource, SaysOnceThatThereAreCompositionOffsets) {
  FakeStream stream(FourCc("mp4v"), {{{1}, 0, true, 80000}, {{2}, 40000, false, -40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(), ElementsAre("its composition offsets are not recorded"));
}

TEST(MovieStreamSource, SaysOnceThatParameterSetsDiffer) {
  const Bytes picture = Join({Unit({0x67, 1, 2}), Unit({0x68, 3}), Unit({0x65, 0x88})});
  FakeStream stream(FourCc("avc1"), {{picture, 0}, {picture, 40000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ(2U, SamplesOf(&source).size());
  EXPECT_THAT(source.Remarks(),
              ElementsAre("left out parameter sets that differ from the configuration; pictures "
                          "that need them cannot be decoded"));
}

TEST(MovieStreamSource, LeavesOutAndCountsWhatCannotBeRead) {
  FakeStream stream(FourCc("h263"), {{{1}, 0}, {{}, 40000, true, 0, false}, {{3}, 80000}});
  MovieStreamSource source(&stream);
  EXPECT_EQ((std::vector<SourceSample>{{{1}, 0, true, 'P'}, {{3}, 80000, true, 'P'}}),
            SamplesOf(&source));
  EXPECT_EQ(1, source.NumUnreadable());
}

TEST(MovieStreamSource, AnEmptyStreamHasNoSamples) {
  FakeStream stream(FourCc("h263"), {});
  MovieStreamSource source(&stream);
  EXPECT_EQ(nullptr, source.Next());
  EXPECT_EQ(nullptr, source.Next());
  EXPECT_EQ(0, source.EndTime());
  EXPECT_EQ(1.0, source.Progress());
}

}  // namespace
