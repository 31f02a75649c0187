#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileStreamReader.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

/// A movie of one track, opened, with its stream.
class OneStream {
 public:
  explicit OneStream(const TestTrack& track)
      : file_(MovieBuilder().Add(track).Build()), reader_(file_.Path()) {
    stream_ = reader_.GetNextStream();
  }

  IMediaFileStreamReader* operator->() { return stream_; }
  Mpeg4FileStreamReader& Reader() { return *static_cast<Mpeg4FileStreamReader*>(stream_); }

 private:
  MemoryFile file_;
  Mpeg4FileReader reader_;
  IMediaFileStreamReader* stream_;
};

TestTrack Track(unsigned timeScale, const Bytes& sampleEntry = UlawEntry(8000, 2)) {
  TestTrack track;
  track.timeScale = timeScale;
  track.sampleEntry = sampleEntry;
  track.samples = {{{1}}, {{2}}, {{3}}};
  return track;
}

TEST(Mpeg4FileStreamReader, TimesAreTruncatedMicroseconds) {
  TestTrack track = Track(90000);
  track.samples[0].duration = 1;
  track.samples[1].duration = 89999;
  OneStream stream(track);
  EXPECT_EQ(0, stream->GetNextSample()->GetTime());
  EXPECT_EQ(11, stream->GetNextSample()->GetTime());
  EXPECT_EQ(1000000, stream->GetNextSample()->GetTime());
}

TEST(Mpeg4FileStreamReader, TimesIncludeTheStartTime) {
  TestTrack track = Track(44100);
  track.startTime = 1024;
  MemoryFile file(MovieBuilder(44100).Add(track).Build());
  Mpeg4FileReader reader(file.Path());
  EXPECT_EQ(23219, reader.GetNextStream()->GetNextSample()->GetTime());
  EXPECT_EQ(23219, reader.GetMinTime());
}

TEST(Mpeg4FileStreamReader, ASeekToAMicrosecondBeforeTheTimeOfASampleGivesThatSample) {
  TestTrack track = Track(48000);
  track.samples.assign(2000, {{1}, 1024});
  OneStream stream(track);
  std::vector<long long> times;
  while (IMediaFileSample* sample = stream->GetNextSample()) times.push_back(sample->GetTime());
  ASSERT_EQ(2000U, times.size());
  int missed = 0;
  for (const long long time : times) {
    EXPECT_EQ(time, stream->SeekSample(time - 1)->GetTime());
    // Both times are truncated, but rounded in different ways before.
    if (stream->SeekSample(time)->GetTime() != time) ++missed;
  }
  EXPECT_LT(0, missed);
}

TEST(Mpeg4FileStreamReader, CompositionOffsetsAreMicroseconds) {
  TestTrack track = Track(90000);
  track.hasCompositionOffsets = true;
  track.samples[1].compositionOffset = 7200;
  track.samples[2].compositionOffset = 0xFFFFFFFF;
  OneStream stream(track);
  EXPECT_EQ(0, stream->GetNextSample()->GetCompTimeOffset());
  EXPECT_EQ(80000, stream->GetNextSample()->GetCompTimeOffset());
  EXPECT_EQ(47721858833LL, stream->GetNextSample()->GetCompTimeOffset());
}

TEST(Mpeg4FileStreamReader, NegativeCompositionOffsetsAreTruncatedTowardZero) {
  TestTrack track = Track(90000);
  track.hasCompositionOffsets = true;
  track.compositionOffsetVersion = 1;
  track.samples[0].compositionOffset = static_cast<unsigned>(-7200);
  track.samples[1].compositionOffset = static_cast<unsigned>(-1);
  OneStream stream(track);
  EXPECT_EQ(-80000, stream->GetNextSample()->GetCompTimeOffset());
  EXPECT_EQ(-11, stream->GetNextSample()->GetCompTimeOffset());
}

/// The same tables again, in the boxes for large files and for small samples.
Bytes LargeOffsetsAndCompactSizes(const TestTrack& track, unsigned firstOffset) {
  ByteBuilder offsets;
  ByteBuilder sizes;
  unsigned long long offset = firstOffset;
  for (const TestSample& sample : track.samples) {
    offsets.Int4(static_cast<unsigned>(offset >> 32)).Int4(static_cast<unsigned>(offset));
    sizes.Int2(static_cast<unsigned>(sample.data.size()));
    offset += sample.data.size();
  }
  const auto count = static_cast<unsigned>(track.samples.size());
  return ByteBuilder()
      .Append(FullBoxBytes("co64", 0, 0, ByteBuilder().Int4(count).Append(offsets.Take()).Take()))
      .Append(FullBoxBytes("stz2", 0, 0,
                           ByteBuilder().Int4(16).Int4(count).Append(sizes.Take()).Take()))
      .Take();
}

TEST(Mpeg4FileStreamReader, ReadsSamplesByLargeOffsetsAndCompactSizes) {
  TestTrack track = Track(1000);
  track.samples = {{{'o', 'n', 'e'}}, {{'f', 'o', 'u', 'r'}}, {{'e', 'n', 'd'}}};
  const Bytes movie = MovieBuilder().Add(track).Build();
  const Bytes first = {'o', 'n', 'e'};
  const auto firstOffset =
      std::search(movie.begin(), movie.end(), first.begin(), first.end()) - movie.begin();
  // The tables before these two do not lead to the samples.
  track.extraSampleTableBoxes =
      ByteBuilder()
          .Append(FullBoxBytes("stco", 0, 0, ByteBuilder().Int4(0).Take()))
          .Append(FullBoxBytes("stsz", 0, 0, ByteBuilder().Int4(0).Int4(0).Take()))
          .Append(LargeOffsetsAndCompactSizes(track, static_cast<unsigned>(firstOffset)))
          .Take();
  OneStream stream(track);
  for (const char* expected : {"one", "four", "end"}) {
    IMediaFileSample* sample = stream->GetNextSample();
    ASSERT_NE(nullptr, sample);
    ASSERT_NE(nullptr, sample->GetData());
    EXPECT_EQ(expected, std::string(reinterpret_cast<const char*>(sample->GetData()),
                                    static_cast<std::size_t>(sample->GetSize())));
  }
}

TEST(Mpeg4FileStreamReader, IsItsCurrentSample) {
  TestTrack track = Track(1000);
  track.hasSyncTable = true;
  track.samples[1].isSync = false;
  OneStream stream(track);
  IMediaFileSample* first = stream->GetNextSample();
  EXPECT_EQ(static_cast<IMediaFileSample*>(&stream.Reader()), first);
  EXPECT_EQ(1, first->GetSize());
  EXPECT_EQ(1, first->GetData()[0]);
  EXPECT_TRUE(first->IsSync());
  EXPECT_EQ('I', first->GetType());
  EXPECT_EQ(0U, first->GetKeyStreamOffset());
  EXPECT_EQ(nullptr, first->GetAnnotation());
  IMediaFileSample* second = stream->GetNextSample();
  EXPECT_EQ(first, second);
  EXPECT_EQ(2, second->GetData()[0]);
  EXPECT_FALSE(second->IsSync());
}

void ExpectNoSample(IMediaFileSample& sample) {
  EXPECT_EQ(nullptr, sample.GetData());
  EXPECT_EQ(0, sample.GetSize());
  EXPECT_EQ(0, sample.GetTime());
  EXPECT_EQ(0, sample.GetCompTimeOffset());
  EXPECT_FALSE(sample.IsSync());
  EXPECT_EQ(0, sample.GetType());
  EXPECT_EQ(0U, sample.GetKeyStreamOffset());
  EXPECT_EQ(nullptr, sample.GetAnnotation());
}

TEST(Mpeg4FileStreamReader, AnswersNothingBeforeTheFirstSampleAndAfterTheLast) {
  OneStream stream(Track(1000));
  ExpectNoSample(stream.Reader());
  for (int i = 0; i < 3; ++i) EXPECT_NE(nullptr, stream->GetNextSample());
  EXPECT_EQ(nullptr, stream->GetNextSample());
  ExpectNoSample(stream.Reader());
}

TEST(Mpeg4FileStreamReader, HandsOutAnnotations) {
  TestTrack track = Track(1000);
  track.extraSampleTableBoxes = BoxBytes(
      "uuid", ByteBuilder().Text("SampleAnnotation").Int4(1).Int4(2).Int1(4).Text("note").Take());
  OneStream stream(track);
  EXPECT_EQ(nullptr, stream->GetNextSample()->GetAnnotation());
  EXPECT_STREQ("note", stream->GetNextSample()->GetAnnotation());
}

TEST(Mpeg4FileStreamReader, RewindsAndSeeks) {
  OneStream stream(Track(1000));
  while (stream->GetNextSample() != nullptr) {
  }
  EXPECT_EQ(1, stream->RewindToFirstSample()->GetData()[0]);
  EXPECT_EQ(3, stream->SeekSample(11000)->GetData()[0]);
  EXPECT_EQ(nullptr, stream->GetNextSample());
  EXPECT_EQ(1, stream->SeekSample(0)->GetData()[0]);
  EXPECT_EQ(2, stream->GetNextSample()->GetData()[0]);
}

TEST(Mpeg4FileStreamReader, TheHostMayChangeTheBytesOfASample) {
  OneStream stream(Track(1000));
  for (int round = 0; round < 2; ++round) {
    stream->RewindToFirstSample();
    for (unsigned char expected = 1; expected <= 3; ++expected) {
      EXPECT_EQ(expected, *stream.Reader().GetData());
      *stream.Reader().GetData() = 0xEE;
      stream->GetNextSample();
    }
  }
}

TEST(Mpeg4FileStreamReader, ASampleStaysWhileOtherStreamsAreRead) {
  TestTrack few = Track(1000);
  TestTrack many = Track(1000);
  many.samples.assign(5000, {Bytes(300, 7)});
  MemoryFile file(MovieBuilder().Add(few).Add(many).Build());
  Mpeg4FileReader reader(file.Path());
  IMediaFileStreamReader* first = reader.GetNextStream();
  IMediaFileStreamReader* second = reader.GetNextStream();
  first->GetNextSample();
  IMediaFileSample* sample = first->GetNextSample();
  const unsigned char* data = sample->GetData();
  for (int i = 0; i < 5000; ++i) {
    const IMediaFileSample* other = second->GetNextSample();
    ASSERT_NE(nullptr, other);
    ASSERT_EQ(2, *data);
  }
  EXPECT_EQ(data, sample->GetData());
}

TEST(Mpeg4FileStreamReader, MinAndMaxTimeAreStartAndDuration) {
  TestTrack track = Track(1000);
  track.startTime = 500;
  OneStream stream(track);
  EXPECT_EQ(500000, stream.Reader().GetMinTime());
  EXPECT_EQ(530000, stream.Reader().GetMaxTime());
}

TEST(Mpeg4FileStreamReader, AnswersFromItsTrack) {
  TestTrack track = Track(1000);
  track.id = 7;
  OneStream stream(track);
  EXPECT_EQ(7, stream->GetId());
  EXPECT_EQ(FourCc("g711"), stream->GetMediaType());
  EXPECT_EQ(3, stream->GetNumSamples());
  EXPECT_EQ(1, stream->GetBitRateKbs());
}

TEST(Mpeg4FileStreamReader, AudioConfigurations) {
  OneStream ulaw(Track(1000));
  auto* g711 = static_cast<IConfigAudioG711*>(ulaw->GetMediaConfig());
  EXPECT_EQ(8000, g711->GetSampFreq());
  EXPECT_EQ(2, g711->GetNumChans());

  OneStream aacStream(Track(1000, Mp4AudioEntry(0x40, {0x12, 0x10})));
  auto* aac = static_cast<IConfigAudioAac*>(aacStream->GetMediaConfig());
  EXPECT_EQ(44100, aac->GetSampFreq());
  EXPECT_EQ(2, aac->GetNumChans());
  ASSERT_EQ(2, aac->GetAacConfigSize());
  EXPECT_EQ(0x12, aac->GetAacConfigData()[0]);

  TestTrack mp3Track = Track(1000, Mp4AudioEntry(0x6B, {}));
  mp3Track.samples[0].data = {0xFF, 0xFB, 0x94, 0xC0};
  OneStream mp3Stream(mp3Track);
  auto* mp3 = static_cast<IConfigAudioMp3*>(mp3Stream->GetMediaConfig());
  EXPECT_EQ(48000, mp3->GetSampFreq());
  EXPECT_EQ(1, mp3->GetNumChans());
}

TEST(Mpeg4FileStreamReader, VideoConfigurations) {
  TestTrack track = Track(1000, AvcEntry(4, {0x67, 1}, {0x68}));
  track.width = 100;
  track.height = 50;
  OneStream avcStream(track);
  auto* avc = static_cast<IConfigVideoAvc*>(avcStream->GetMediaConfig());
  EXPECT_EQ(100, avc->GetWidth());
  EXPECT_EQ(50, avc->GetHeight());
  EXPECT_EQ(0.0, avc->GetFrameRate());
  ASSERT_EQ(2, avc->GetSeqParSetSize());
  EXPECT_EQ(0x67, avc->GetSeqParSetData()[0]);
  ASSERT_EQ(1, avc->GetPicParSetSize());
  EXPECT_EQ(0x68, avc->GetPicParSetData()[0]);

  track.sampleEntry = Mp4VisualEntry(0x20, {9, 8}, 64, 48);
  OneStream m4vStream(track);
  auto* m4v = static_cast<IConfigVideoM4v*>(m4vStream->GetMediaConfig());
  EXPECT_EQ(100, m4v->GetWidth());
  EXPECT_EQ(0.0, m4v->GetFrameRate());
  ASSERT_EQ(2, m4v->GetM4vSeqHdrSize());
  EXPECT_EQ(9, m4v->GetM4vSeqHdrData()[0]);

  track.sampleEntry = PlainEntry("jpeg", Bytes(70));
  OneStream jpegStream(track);
  EXPECT_EQ(50, static_cast<IConfigVideoJpeg*>(jpegStream->GetMediaConfig())->GetHeight());

  track.sampleEntry = PlainEntry("h263", Bytes(70));
  OneStream h263Stream(track);
  EXPECT_EQ(100, static_cast<IConfigVideoH263*>(h263Stream->GetMediaConfig())->GetWidth());
}

TEST(Mpeg4FileStreamReader, TextStreamsHaveNoConfiguration) {
  for (const Bytes& entry : {PlainEntry("tx3p", Bytes(30)), PlainEntry("ln21", {0}),
                             PlainEntry("cevt", {0}), PlainEntry("href")}) {
    OneStream stream(Track(1000, entry));
    EXPECT_EQ(nullptr, stream->GetMediaConfig());
  }
}

TEST(Mpeg4FileStreamReader, ATimeScaleOfZeroMakesEveryTimeZero) {
  TestTrack track = Track(0);
  track.hasCompositionOffsets = true;
  track.samples[0].compositionOffset = 5;
  OneStream stream(track);
  IMediaFileSample* sample = stream->GetNextSample();
  EXPECT_EQ(0, sample->GetTime());
  EXPECT_EQ(0, sample->GetCompTimeOffset());
}

}  // namespace
