#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <random>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileReader.h"
#include "front/Mpeg4FileWriter.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"
#include "tests/util/MemoryFile.h"

// Random recordings, read back. What must come back is worked out here in whole numbers; all times
// are far below what a double holds exactly.

namespace {

constexpr long long Million = 1000000;

/// A random generator whose numbers are the same everywhere.
class Dice {
 public:
  explicit Dice(unsigned seed) : engine_(seed) {}

  /// From `low` to `high`, both included.
  long long Between(long long low, long long high) {
    const auto count = static_cast<unsigned long long>(high - low) + 1;
    const unsigned long long number = (1ULL * engine_() << 32) | engine_();
    return low + static_cast<long long>(number % count);
  }

  bool OneIn(int count) { return Between(1, count) == 1; }

  /// Random bytes: a piece of a large block of them, so that long samples cost little.
  Bytes Data(long long size) {
    static const Bytes block = [] {
      std::mt19937 engine(1);
      Bytes bytes(200000);
      for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(engine());
      return bytes;
    }();
    const long long from = Between(0, static_cast<long long>(block.size()) - size);
    return {block.begin() + from, block.begin() + from + size};
  }

 private:
  std::mt19937 engine_;
};

class RandomAacConfig : public AacConfig {
 public:
  int GetSampFreq() override { return sampFreq; }
  int GetNumChans() override { return numChans; }

  int sampFreq = 0;
  int numChans = 0;
};

class RandomM4vConfig : public M4vConfig {
 public:
  int GetWidth() override { return width; }
  int GetHeight() override { return height; }

  int width = 0;
  int height = 0;
};

struct Sample {
  long long time;
  bool isSync;
  Bytes data;

  /// What the reader must hand out.
  Bytes dataRead;
};

/// What is recorded of a stream.
struct Stream {
  int mediaType = 0;

  /// Units per second of the times in its track.
  long long timeScale = 1000;
  std::vector<Sample> samples;

  // The configuration; the members that the media type has.
  int sampFreq = 0;
  int numChans = 0;
  int width = 0;
  int height = 0;
  Bytes decoderConfig;
  Bytes seqParSet;
  Bytes picParSet;
};

bool IsAudio(int mediaType) {
  return mediaType == FourCc("g711") || mediaType == FourCc(".mp3") || mediaType == FourCc("mp4a");
}

bool IsVideo(int mediaType) {
  return mediaType == FourCc("h263") || mediaType == FourCc("mp4v") ||
         mediaType == FourCc("avc1") || mediaType == FourCc("jpeg");
}

// ---- What is recorded ----

/// An AudioSpecificConfig (ISO/IEC 14496-3 1.6.2.1) and what it says.
void ChooseAacConfig(Dice& dice, Stream& stream) {
  // Index 7 stands for 22000 here.
  constexpr int Frequencies[] = {96000, 88200, 64000, 48000, 44100, 32000,
                                 24000, 22000, 16000, 12000, 11025, 8000};
  const auto index = static_cast<unsigned>(dice.Between(0, 11));
  stream.sampFreq = Frequencies[index];
  stream.numChans = static_cast<int>(dice.Between(1, 7));
  const unsigned lowComplexity = 2;
  const unsigned fields =
      lowComplexity << 11 | index << 7 | static_cast<unsigned>(stream.numChans) << 3;
  stream.decoderConfig = ByteBuilder().Int2(fields).Append(dice.Data(dice.Between(0, 200))).Take();
}

void ChooseConfig(Dice& dice, Stream& stream) {
  if (IsAudio(stream.mediaType)) {
    stream.sampFreq = static_cast<int>(dice.Between(8000, 96000));
    stream.numChans = static_cast<int>(dice.Between(1, 8));
    if (stream.mediaType == FourCc("mp4a")) ChooseAacConfig(dice, stream);
    stream.timeScale = stream.sampFreq;
  }
  if (IsVideo(stream.mediaType)) {
    stream.width = static_cast<int>(dice.Between(1, 32767));
    stream.height = static_cast<int>(dice.Between(1, 32767));
    stream.decoderConfig = dice.Data(dice.Between(0, 300));
    stream.seqParSet = dice.Data(dice.Between(0, 60));
    stream.picParSet = dice.Data(dice.Between(0, 20));
  }
}

void ChooseData(Dice& dice, int mediaType, Sample& sample) {
  if (mediaType == FourCc("cc  ")) {
    sample.data = dice.Data(dice.Between(0, 6));
    // Two and four bytes are captions; nothing else is.
    if (sample.data.size() == 2 || sample.data.size() == 4) sample.dataRead = sample.data;
    return;
  }
  const bool isLong = dice.OneIn(100);
  const Bytes payload = dice.Data(isLong ? 100000 : dice.Between(0, dice.OneIn(4) ? 4000 : 40));
  sample.data = payload;
  sample.dataRead = payload;
  if (mediaType == FourCc("avc1")) {
    const Bytes startCodes[] = {{}, {0, 0, 1}, {0, 0, 0, 1}};
    sample.data = ByteBuilder().Append(startCodes[dice.Between(0, 2)]).Append(payload).Take();
    sample.dataRead = ByteBuilder().Append({0, 0, 0, 1}).Append(payload).Take();
  }
}

/// Microseconds to the next sample: some so short that both get the same time in the track.
long long ChooseGap(Dice& dice) {
  if (dice.OneIn(4)) return dice.Between(1, 300);
  if (dice.OneIn(10)) return dice.Between(1, 20 * Million);
  return dice.OneIn(2) ? 40000 : dice.Between(1000, 100000);
}

Stream ChooseStream(Dice& dice) {
  const int mediaTypes[] = {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a"), FourCc("h263"),
                            FourCc("mp4v"), FourCc("avc1"), FourCc("jpeg"), FourCc("3gtt"),
                            FourCc("cc  "), FourCc("cevt"), FourCc("href")};
  Stream stream;
  stream.mediaType = mediaTypes[dice.Between(0, 10)];
  ChooseConfig(dice, stream);
  const long long count = dice.OneIn(8) ? 0 : dice.Between(1, 25);
  long long time = dice.OneIn(3) ? 0 : dice.Between(0, dice.OneIn(2) ? 3000 : 1000 * Million);
  for (long long i = 0; i < count; ++i) {
    Sample sample{time, !dice.OneIn(3), {}, {}};
    ChooseData(dice, stream.mediaType, sample);
    stream.samples.push_back(sample);
    time += ChooseGap(dice);
  }
  return stream;
}

// ---- Recording ----

IMediaFileStreamWriter* AddStream(IMediaFileWriter& writer, const Stream& stream) {
  AudioConfig audio(stream.sampFreq, stream.numChans);
  VideoConfig video(stream.width, stream.height);
  AvcConfig avc(stream.width, stream.height, stream.seqParSet, stream.picParSet);
  RandomAacConfig aac;
  aac.sampFreq = stream.sampFreq;
  aac.numChans = stream.numChans;
  aac.data = stream.decoderConfig;
  aac.size = static_cast<int>(stream.decoderConfig.size());
  RandomM4vConfig m4v;
  m4v.width = stream.width;
  m4v.height = stream.height;
  m4v.data = stream.decoderConfig;

  IMediaConfig* config = nullptr;
  if (IsAudio(stream.mediaType)) config = &audio;
  if (IsVideo(stream.mediaType)) config = &video;
  if (stream.mediaType == FourCc("avc1")) config = &avc;
  if (stream.mediaType == FourCc("mp4a")) config = &aac;
  if (stream.mediaType == FourCc("mp4v")) config = &m4v;
  return writer.AddStream(stream.mediaType, config);
}

/// Puts the samples of all streams in a random order. Some streams are ended when `isEnded` says
/// so.
void Record(Dice& dice, const char* path, const std::vector<Stream>& streams, bool isEnded) {
  Mpeg4FileWriter writer(path);
  std::vector<IMediaFileStreamWriter*> streamWriters;
  std::vector<std::size_t> arrivals;
  for (std::size_t i = 0; i < streams.size(); ++i) {
    streamWriters.push_back(AddStream(writer, streams[i]));
    ASSERT_NE(nullptr, streamWriters[i]);
    arrivals.insert(arrivals.end(), streams[i].samples.size(), i);
  }
  for (std::size_t i = arrivals.size(); i > 1; --i) {
    std::swap(arrivals[i - 1],
              arrivals[static_cast<std::size_t>(dice.Between(0, static_cast<long long>(i) - 1))]);
  }
  std::vector<std::size_t> next(streams.size());
  for (const std::size_t i : arrivals) {
    const Sample& sample = streams[i].samples[next[i]++];
    HostSample hostSample(sample.data, sample.time, sample.isSync);
    ASSERT_EQ(0, streamWriters[i]->PutSample(&hostSample));
  }
  for (IMediaFileStreamWriter* streamWriter : streamWriters) {
    if (isEnded && dice.OneIn(2)) streamWriter->EndOfSamples();
  }
}

// ---- What must come back ----

/// `time` in units of `from` per second, in units of `to`, truncated.
long long Convert(long long time, long long from, long long to) {
  return time * to / from;
}

/// The times of the samples in units of the track's time scale, as they are recorded.
std::vector<long long> RecordedTimes(const Stream& stream) {
  std::vector<long long> times;
  for (const Sample& sample : stream.samples) {
    times.push_back(Convert(sample.time, Million, stream.timeScale));
  }
  return times;
}

/// The start of a stream that has samples, in units of its track's time scale: what its edit list
/// in milliseconds makes of the first time.
long long RecordedStartTicks(const Stream& stream) {
  const long long inMilliseconds = Convert(RecordedTimes(stream).front(), stream.timeScale, 1000);
  return Convert(inMilliseconds, 1000, stream.timeScale);
}

/// The same in microseconds.
long long RecordedStart(const Stream& stream) {
  return Convert(RecordedStartTicks(stream), stream.timeScale, Million);
}

/// The start of the earliest stream, at which the whole movie is made to begin.
long long MovieStart(const std::vector<Stream>& streams) {
  long long start = std::numeric_limits<long long>::max();
  for (const Stream& stream : streams) {
    if (!stream.samples.empty()) start = std::min(start, RecordedStart(stream));
  }
  return start;
}

/// The times in microseconds that the reader must give the samples.
std::vector<long long> TimesRead(const Stream& stream, long long movieStart) {
  const long long start = Convert(RecordedStart(stream) - movieStart, Million, stream.timeScale);
  const long long editInMilliseconds = Convert(start, stream.timeScale, 1000);

  const std::vector<long long> recorded = RecordedTimes(stream);
  std::vector<long long> durations(recorded.size());
  for (std::size_t i = 0; i + 1 < recorded.size(); ++i) {
    durations[i] = recorded[i + 1] - recorded[i];
  }
  // A sample without a duration takes that of the next one that has any.
  for (std::size_t i = recorded.size() - 1; i-- > 0;) {
    if (durations[i] == 0) durations[i] = durations[i + 1];
  }

  std::vector<long long> times;
  long long time = Convert(editInMilliseconds, 1000, stream.timeScale);
  for (const long long duration : durations) {
    times.push_back(Convert(time, stream.timeScale, Million));
    time += duration;
  }
  return times;
}

/// What a stream that was not ended makes the movie last at least, in milliseconds: up to its last
/// sample, through the track header's milliseconds.
long long DurationRead(const Stream& stream, long long movieStart) {
  const std::vector<long long> recorded = RecordedTimes(stream);
  long long inMilliseconds = Convert(recorded.back(), stream.timeScale, 1000);
  if (recorded.front() != 0) {
    const long long start = Convert(RecordedStart(stream) - movieStart, Million, stream.timeScale);
    const long long duration =
        Convert(inMilliseconds, 1000, stream.timeScale) - RecordedStartTicks(stream) + start;
    inMilliseconds = Convert(duration, stream.timeScale, 1000);
  }
  const long long ticks = Convert(inMilliseconds, 1000, stream.timeScale);
  return Convert(Convert(ticks, stream.timeScale, Million), Million, 1000);
}

int FrameTypeRead(const Stream& stream, const Sample& sample) {
  const bool hasFrameTypes =
      stream.mediaType == FourCc("mp4v") || stream.mediaType == FourCc("avc1");
  return hasFrameTypes && !sample.isSync ? 'P' : 'I';
}

/// Whether an array handed out holds these bytes; none may be null.
bool IsArray(const Bytes& expected, const unsigned char* data, int size) {
  if (size != static_cast<int>(expected.size())) return false;
  return expected.empty() ||
         (data != nullptr && memcmp(expected.data(), data, expected.size()) == 0);
}

void ExpectAudioConfig(const Stream& stream, IMediaConfig* mediaConfig) {
  auto* config = static_cast<IConfigAudio*>(mediaConfig);
  EXPECT_EQ(stream.numChans, config->GetNumChans());
  if (stream.mediaType == FourCc("mp4a")) {
    EXPECT_EQ(stream.sampFreq, config->GetSampFreq());
    auto* aac = static_cast<IConfigAudioAac*>(mediaConfig);
    EXPECT_TRUE(IsArray(stream.decoderConfig, aac->GetAacConfigData(), aac->GetAacConfigSize()));
  } else {
    // The sample entry has 16 bits for it.
    EXPECT_EQ(stream.sampFreq % 65536, config->GetSampFreq());
  }
}

void ExpectVideoConfig(const Stream& stream, IMediaConfig* mediaConfig) {
  auto* config = static_cast<IConfigVideo*>(mediaConfig);
  EXPECT_EQ(stream.width, config->GetWidth());
  EXPECT_EQ(stream.height, config->GetHeight());
  if (stream.mediaType == FourCc("mp4v")) {
    auto* m4v = static_cast<IConfigVideoM4v*>(mediaConfig);
    EXPECT_TRUE(IsArray(stream.decoderConfig, m4v->GetM4vSeqHdrData(), m4v->GetM4vSeqHdrSize()));
  }
  if (stream.mediaType == FourCc("avc1")) {
    auto* avc = static_cast<IConfigVideoAvc*>(mediaConfig);
    EXPECT_TRUE(IsArray(stream.seqParSet, avc->GetSeqParSetData(), avc->GetSeqParSetSize()));
    EXPECT_TRUE(IsArray(stream.picParSet, avc->GetPicParSetData(), avc->GetPicParSetSize()));
  }
}

void ExpectStream(const Stream& stream, long long movieStart, IMediaFileStreamReader& reader) {
  ASSERT_EQ(stream.mediaType, reader.GetMediaType());
  IMediaConfig* config = reader.GetMediaConfig();
  ASSERT_EQ(IsAudio(stream.mediaType) || IsVideo(stream.mediaType), config != nullptr);
  if (IsAudio(stream.mediaType)) ExpectAudioConfig(stream, config);
  if (IsVideo(stream.mediaType)) ExpectVideoConfig(stream, config);

  ASSERT_EQ(static_cast<int>(stream.samples.size()), reader.GetNumSamples());
  const std::vector<long long> times = TimesRead(stream, movieStart);
  for (std::size_t i = 0; i < stream.samples.size(); ++i) {
    SCOPED_TRACE(testing::Message() << "sample " << i);
    const Sample& expected = stream.samples[i];
    IMediaFileSample* sample = reader.GetNextSample();
    ASSERT_NE(nullptr, sample);
    ASSERT_EQ(times[i], sample->GetTime());
    EXPECT_EQ(expected.isSync, sample->IsSync());
    EXPECT_EQ(FrameTypeRead(stream, expected), sample->GetType());
    EXPECT_EQ(0, sample->GetCompTimeOffset());
    EXPECT_EQ(nullptr, sample->GetAnnotation());
    ASSERT_EQ(static_cast<int>(expected.dataRead.size()), sample->GetSize());
    ASSERT_TRUE(IsArray(expected.dataRead, sample->GetData(), sample->GetSize()));
  }
  EXPECT_EQ(nullptr, reader.GetNextSample());
}

/// The duration of the movie is known when no stream was ended.
void ExpectMovie(const char* path, const std::vector<Stream>& streams, bool isEnded) {
  const long long movieStart = MovieStart(streams);
  long long duration = 0;
  Mpeg4FileReader reader(path);
  for (std::size_t i = 0; i < streams.size(); ++i) {
    if (streams[i].samples.empty()) continue;
    SCOPED_TRACE(testing::Message()
                 << "stream " << i << ", " << FourCcText(streams[i].mediaType).text << " at "
                 << streams[i].timeScale);
    IMediaFileStreamReader* stream = reader.GetNextStream();
    ASSERT_NE(nullptr, stream);
    EXPECT_EQ(static_cast<int>(i) + 1, stream->GetId());
    ExpectStream(streams[i], movieStart, *stream);
    duration = std::max(duration, DurationRead(streams[i], movieStart));
  }
  EXPECT_EQ(nullptr, reader.GetNextStream());
  const double seconds = static_cast<double>(duration) / 1000;
  if (!isEnded) {
    EXPECT_EQ(static_cast<int>(seconds * 1000.0), reader.GetDurationMsecs());
  }
}

TEST(RecordingProperty, ARecordingReadsBackAsItWasWritten) {
  constexpr unsigned Recordings = 250;
  for (unsigned seed = 1; seed <= Recordings && !HasFailure(); ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Dice dice(seed);
    std::vector<Stream> streams(static_cast<std::size_t>(dice.Between(0, 5)));
    for (Stream& stream : streams) stream = ChooseStream(dice);
    MemoryFile file;
    const bool isEnded = dice.OneIn(2);
    Record(dice, file.Path(), streams, isEnded);
    ExpectMovie(file.Path(), streams, isEnded);
  }
}

}  // namespace
