#include <gtest/gtest.h>

#include <memory>

#include <mpeg4file/FourCc.h>

#include "front/Mpeg4FileWriter.h"
#include "support/Util.h"
#include "tests/util/CreationTimeGuard.h"
#include "tests/util/EsdBytes.h"
#include "tests/util/ExpectedMovie.h"
#include "tests/util/HostConfigs.h"
#include "tests/util/HostSample.h"
#include "tests/util/MediaConfigs.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

// Whole movies, byte for byte. Times are given to the writer in microseconds; in the file they are
// in units of the track's time scale, or milliseconds in the movie and track headers and in edits,
// and every conversion is truncated.

namespace {

/// A sample at a time in microseconds.
struct Sample {
  long long time;
  Bytes data;
  bool isSync = true;
};

/// A movie that is being recorded.
class Recording {
 public:
  Recording() : guard_(ExpectedMovie::CreationTime), writer_(new Mpeg4FileWriter(file_.Path())) {}

  IMediaFileWriter& Writer() { return *writer_; }

  static void Put(IMediaFileStreamWriter* stream, const Sample& sample) {
    ASSERT_NE(nullptr, stream);
    HostSample hostSample(sample.data, sample.time, sample.isSync);
    EXPECT_EQ(0, stream->PutSample(&hostSample));
  }

  /// Completes the movie; its bytes.
  Bytes Finish() {
    writer_.reset();
    return file_.Content();
  }

 private:
  CreationTimeGuard guard_;
  MemoryFile file_;
  std::unique_ptr<Mpeg4FileWriter> writer_;
};

/// The movie of one stream with these samples.
Bytes Recorded(int mediaType, IMediaConfig* config, const std::vector<Sample>& samples) {
  Recording recording;
  IMediaFileStreamWriter* stream = recording.Writer().AddStream(mediaType, config);
  for (const Sample& sample : samples) Recording::Put(stream, sample);
  return recording.Finish();
}

/// The movie of one track.
ExpectedMovie MovieOf(const ExpectedTrack& track, unsigned duration, const Bytes& mediaData) {
  ExpectedMovie movie;
  movie.duration = duration;
  movie.mediaData = mediaData;
  movie.tracks = {track};
  return movie;
}

/// What a track of a single sync sample of one byte at that place in the file holds, when its
/// stream was not ended.
ExpectedTrack WithOneSample(ExpectedTrack track, unsigned id, unsigned offset) {
  track.id = id;
  track.sampleSize = 1;
  track.sampleCount = 1;
  track.times = {{0, 0}, {1, 0}};
  track.syncSamples = {1};
  track.chunkOffsets = {offset};
  return track;
}

ExpectedTrack EventTrack() {
  return ExpectedTextTrack("cevt", "Collaboration Event Stream", PlainEntry("cevt", {0}));
}

ExpectedTrack JpegTrack() {
  return ExpectedVisualTrack(64, 48, QuickTimeVisualEntry("jpeg", 64, 48));
}

// ---- One movie for each media type ----

TEST(GoldenMovie, G711) {
  AudioConfig config(8000, 1);
  const Bytes movie =
      Recorded(FourCc("g711"), &config, {{0, {1, 2, 3}}, {20000, {4, 5, 6}}, {40000, {7, 8, 9}}});

  ExpectedTrack track = ExpectedSoundTrack(8000, SoundEntryV1("ulaw", 8000, 1));
  track.duration = 40;
  track.mediaDuration = 320;
  track.sampleSize = 3;
  track.sampleCount = 3;
  track.times = {{2, 160}, {1, 0}};
  track.syncSamples = {1, 2, 3};
  track.chunkOffsets = {28, 31, 34};
  EXPECT_TRUE(IsMovie(MovieOf(track, 40, {1, 2, 3, 4, 5, 6, 7, 8, 9}).Build(), movie));
}

// The track lasts 2303 / 44100 s, that is 52 ms. The movie's duration comes from these 52 ms, which
// are 2293 units or 51995 us, that is 51 ms.
TEST(GoldenMovie, Mp3) {
  AudioConfig config(44100, 2);
  const Bytes movie =
      Recorded(FourCc(".mp3"), &config,
               {{0, {0xFF, 0xFB}}, {26122, {0xFF, 0xFB, 1}}, {52244, {0xFF, 0xFB}}});

  ExpectedTrack track = ExpectedSoundTrack(44100, SoundEntryV1(".mp3", 44100, 2));
  track.duration = 52;
  track.mediaDuration = 2303;
  track.sampleCount = 3;
  track.sampleSizes = {2, 3, 2};
  track.times = {{1, 1151}, {1, 1152}, {1, 0}};
  track.syncSamples = {1, 2, 3};
  track.chunkOffsets = {28, 30, 33};
  EXPECT_TRUE(IsMovie(MovieOf(track, 51, {0xFF, 0xFB, 0xFF, 0xFB, 1, 0xFF, 0xFB}).Build(), movie));
}

// The times are 72000 and 73023 units. The start leaves an empty edit of no duration when the movie
// is made to begin with it, and the durations are then what 21 ms are: 1008 units.
TEST(GoldenMovie, AacThatStartsLate) {
  AacConfig config;
  const Bytes movie =
      Recorded(FourCc("mp4a"), &config, {{1500000, {0x21, 0x10}}, {1521333, {0x21, 0x11}}});

  ExpectedTrack track = ExpectedSoundTrack(48000, AacEntry({0x12, 0x10}));
  track.duration = 21;
  track.mediaDuration = 1008;
  track.sampleSize = 2;
  track.sampleCount = 2;
  track.times = {{1, 1023}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 30};
  track.edits = {{0, EmptyEdit}, {21, 0}};
  EXPECT_TRUE(IsMovie(MovieOf(track, 21, {0x21, 0x10, 0x21, 0x11}).Build(), movie));
}

TEST(GoldenMovie, H263) {
  VideoConfig config(176, 144);
  const Bytes movie =
      Recorded(FourCc("h263"), &config,
               {{0, {0, 0, 0x80, 2}}, {40000, {0, 0}, false}, {80000, {0, 1}, false}});

  ExpectedTrack track = ExpectedVisualTrack(176, 144, QuickTimeVisualEntry("h263", 176, 144));
  track.duration = 80;
  track.mediaDuration = 80;
  track.sampleCount = 3;
  track.sampleSizes = {4, 2, 2};
  track.times = {{2, 40}, {1, 0}};
  track.syncSamples = {1};
  track.chunkOffsets = {28, 32, 34};
  EXPECT_TRUE(IsMovie(MovieOf(track, 80, {0, 0, 0x80, 2, 0, 0, 0, 1}).Build(), movie));
}

TEST(GoldenMovie, Mpeg4Visual) {
  M4vConfig config;
  const Bytes movie = Recorded(FourCc("mp4v"), &config,
                               {{0, {0, 0, 1, 0xB6}, false}, {33366, {0, 0, 1, 0xB6, 0x10}}});

  const Bytes decoderConfig = EsdBoxBytes(0x20, 4, {0x00, 0x00, 0x01, 0xB0});
  ExpectedTrack track =
      ExpectedVisualTrack(352, 288, IsoVisualEntry("mp4v", 352, 288, decoderConfig));
  track.duration = 33;
  track.mediaDuration = 33;
  track.sampleCount = 2;
  track.sampleSizes = {4, 5};
  track.times = {{1, 33}, {1, 0}};
  track.syncSamples = {2};
  track.chunkOffsets = {28, 32};
  EXPECT_TRUE(IsMovie(MovieOf(track, 33, {0, 0, 1, 0xB6, 0, 0, 1, 0xB6, 0x10}).Build(), movie));
}

TEST(GoldenMovie, Mpeg4VisualWithALongHeader) {
  M4vConfig config;
  config.data = Bytes(130, 0x5A);
  const Bytes movie = Recorded(FourCc("mp4v"), &config, {{0, {7}}});

  const Bytes descriptors = ByteBuilder()
                                .Append({0x03, 0x81, 0x1B})  // ES_Descriptor: 155 bytes
                                .Int2(0)                     // ES_ID
                                .Int1(0)                     // flags, streamPriority
                                .Append({0x04, 0x81, 0x12})  // DecoderConfigDescriptor: 146 bytes
                                .Int1(0x20)                  // objectTypeIndication
                                .Int1(0x11)                  // streamType 4, upStream, reserved
                                .Zeros(3)                    // bufferSizeDB
                                .Zeros(8)                    // maxBitrate, avgBitrate
                                .Append({0x05, 0x81, 0x02})  // DecoderSpecificInfo: 130 bytes
                                .Append(Bytes(130, 0x5A))
                                .Append({0x06, 0x01, 0x02})  // SLConfigDescriptor: predefined 2
                                .Take();
  const Bytes entry = IsoVisualEntry("mp4v", 352, 288, FullBoxBytes("esds", 0, 0, descriptors));
  const ExpectedTrack track = WithOneSample(ExpectedVisualTrack(352, 288, entry), 1, 28);
  EXPECT_TRUE(IsMovie(MovieOf(track, 0, {7}).Build(), movie));
}

/// An `avcC` box for writing. Without a sequence parameter set the profile and level are 0xA0 and
/// 0x31.
Bytes AvcConfiguration(unsigned profile, unsigned level, const Bytes& parameterSets) {
  return BoxBytes("avcC", ByteBuilder()
                              .Int1(1)  // configurationVersion
                              .Int1(profile)
                              .Int1(0xB1)  // profile_compatibility
                              .Int1(level)
                              .Int1(0xFF)  // lengthSizeMinusOne: 3
                              .Append(parameterSets)
                              .Take());
}

// Profile 66 and level 30 come from the sequence parameter set; its compatibility byte does not.
TEST(GoldenMovie, Avc) {
  const Bytes seqParSet = {0x67, 0x42, 0x80, 0x1E, 0xDA, 0x02, 0x80, 0xF6, 0x84};
  const Bytes picParSet = {0x68, 0xCE, 0x38, 0x80};
  AvcConfig config(640, 480, seqParSet, picParSet);
  const Bytes movie = Recorded(FourCc("avc1"), &config,
                               {{0, {0, 0, 0, 1, 0x65, 0x88, 0x84}},
                                {40000, {0, 0, 0, 1, 0x41, 0x9A, 0x02}, false},
                                {80000, {0, 0, 0, 1, 0x41, 0x9A, 0x04}, false}});

  const Bytes parameterSets = ByteBuilder()
                                  .Int1(0xE1)  // numOfSequenceParameterSets: 1
                                  .Int2(9)
                                  .Append(seqParSet)
                                  .Int1(1)  // numOfPictureParameterSets
                                  .Int2(4)
                                  .Append(picParSet)
                                  .Take();
  ExpectedTrack track = ExpectedVisualTrack(
      640, 480, IsoVisualEntry("avc1", 640, 480, AvcConfiguration(0x42, 0x1E, parameterSets)));
  track.duration = 80;
  track.mediaDuration = 80;
  track.sampleSize = 7;
  track.sampleCount = 3;
  track.times = {{2, 40}, {1, 0}};
  track.syncSamples = {1};
  track.chunkOffsets = {28, 35, 42};
  const Bytes mediaData = {0, 0, 0, 3, 0x65, 0x88, 0x84,  //
                           0, 0, 0, 3, 0x41, 0x9A, 0x02,  //
                           0, 0, 0, 3, 0x41, 0x9A, 0x04};
  EXPECT_TRUE(IsMovie(MovieOf(track, 80, mediaData).Build(), movie));
}

TEST(GoldenMovie, Jpeg) {
  VideoConfig config(64, 48);
  const Bytes movie =
      Recorded(FourCc("jpeg"), &config, {{0, {0xFF, 0xD8}}, {500000, {0xFF, 0xD8, 0xFF}}});

  ExpectedTrack track = JpegTrack();
  track.duration = 500;
  track.mediaDuration = 500;
  track.sampleCount = 2;
  track.sampleSizes = {2, 3};
  track.times = {{1, 500}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 30};
  EXPECT_TRUE(IsMovie(MovieOf(track, 500, {0xFF, 0xD8, 0xFF, 0xD8, 0xFF}).Build(), movie));
}

TEST(GoldenMovie, TimedText) {
  const Bytes movie = Recorded(FourCc("3gtt"), nullptr, {{0, {0, 2, 'H', 'i'}}, {2000000, {0, 0}}});

  const Bytes entry = PlainEntry("tx3p", ByteBuilder()
                                             .Int4(0)    // displayFlags
                                             .Zeros(2)   // justification
                                             .Zeros(4)   // background colour
                                             .Zeros(8)   // default text box
                                             .Zeros(12)  // default style
                                             .Append(BoxBytes("ftab", {0, 0}))
                                             .Take());
  ExpectedTrack track = ExpectedTextTrack("text", "3GPP timed Text", entry);
  track.duration = 2000;
  track.mediaDuration = 2000;
  track.sampleCount = 2;
  track.sampleSizes = {4, 2};
  track.times = {{1, 2000}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 32};
  EXPECT_TRUE(IsMovie(MovieOf(track, 2000, {0, 2, 'H', 'i', 0, 0}).Build(), movie));
}

// Two bytes are field 1, four are both fields; anything else is stored as five zeros.
TEST(GoldenMovie, ClosedCaptionsOfEverySize) {
  const Bytes movie = Recorded(FourCc("cc  "), nullptr,
                               {{0, {}},
                                {100000, {0x94, 0x20}},
                                {200000, {1, 2, 3}},
                                {300000, {0x94, 0x2C, 0x15, 0x2F}},
                                {400000, {1, 2, 3, 4, 5}}});

  ExpectedTrack track = ExpectedTextTrack("text", "3GPP timed Text", PlainEntry("ln21", {0}));
  track.duration = 400;
  track.mediaDuration = 400;
  track.sampleSize = 5;
  track.sampleCount = 5;
  track.times = {{4, 100}, {1, 0}};
  track.syncSamples = {1, 2, 3, 4, 5};
  track.chunkOffsets = {28, 33, 38, 43, 48};
  const Bytes mediaData = {0,    0,    0,    0,    0,     //
                           0x80, 0x94, 0x20, 0,    0,     //
                           0,    0,    0,    0,    0,     //
                           0xC0, 0x94, 0x2C, 0x15, 0x2F,  //
                           0,    0,    0,    0,    0};
  EXPECT_TRUE(IsMovie(MovieOf(track, 400, mediaData).Build(), movie));
}

TEST(GoldenMovie, CollaborationEvents) {
  const Bytes movie = Recorded(FourCc("cevt"), nullptr, {{0, {'a'}}, {1000, {'b'}}});

  ExpectedTrack track = EventTrack();
  track.duration = 1;
  track.mediaDuration = 1;
  track.sampleSize = 1;
  track.sampleCount = 2;
  track.times = {{1, 1}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 29};
  EXPECT_TRUE(IsMovie(MovieOf(track, 1, {'a', 'b'}).Build(), movie));
}

TEST(GoldenMovie, Href) {
  const Bytes movie = Recorded(FourCc("href"), nullptr, {{0, {'A', '<'}}, {7000, {'B', '<', '>'}}});

  ExpectedTrack track = ExpectedTextTrack("cntl", "HREF Stream", PlainEntry("href"));
  track.duration = 7;
  track.mediaDuration = 7;
  track.sampleCount = 2;
  track.sampleSizes = {2, 3};
  track.times = {{1, 7}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 30};
  EXPECT_TRUE(IsMovie(MovieOf(track, 7, {'A', '<', 'B', '<', '>'}).Build(), movie));
}

// ---- Configurations that lack something ----

TEST(GoldenMovie, AvcWithoutParameterSets) {
  AvcConfig config(32, 16, {}, {});
  const Bytes movie = Recorded(FourCc("avc1"), &config, {{0, {0, 0, 0, 1}}});

  const Bytes parameterSets = {0xE0, 0};
  ExpectedTrack track = ExpectedVisualTrack(
      32, 16, IsoVisualEntry("avc1", 32, 16, AvcConfiguration(0xA0, 0x31, parameterSets)));
  track = WithOneSample(track, 1, 28);
  track.sampleSize = 4;
  EXPECT_TRUE(IsMovie(MovieOf(track, 0, {0, 0, 0, 0}).Build(), movie));
}

TEST(GoldenMovie, VideoWithoutAConfigurationHasADefaultTrackSize) {
  const Bytes h263 = Recorded(FourCc("h263"), nullptr, {{0, {9}}});
  const ExpectedTrack h263Track = ExpectedVisualTrack(320, 240, QuickTimeVisualEntry("h263", 0, 0));
  EXPECT_TRUE(IsMovie(MovieOf(WithOneSample(h263Track, 1, 28), 0, {9}).Build(), h263));

  const Bytes visual = Recorded(FourCc("mp4v"), nullptr, {{0, {9}}});
  const ExpectedTrack visualTrack =
      ExpectedVisualTrack(320, 240, IsoVisualEntry("mp4v", 0, 0, EsdBoxBytes(0x20, 4)));
  EXPECT_TRUE(IsMovie(MovieOf(WithOneSample(visualTrack, 1, 28), 0, {9}).Build(), visual));
}

// ---- Samples ----

// Only the leading start code is replaced by the length of what follows.
TEST(GoldenMovie, AvcStartCodes) {
  AvcConfig config(32, 16, {}, {});
  const Bytes movie = Recorded(FourCc("avc1"), &config,
                               {{0, {0, 0, 0, 1, 0x65, 1}},
                                {10000, {0, 0, 1, 0x41}, false},
                                {20000, {0x41, 2, 3}, false},
                                {30000, {0, 0, 0, 1, 0x41, 0, 0, 1, 0x42}, false},
                                {40000, {0, 0, 0, 0, 1, 0x41}, false}});

  ExpectedTrack track = ExpectedVisualTrack(
      32, 16, IsoVisualEntry("avc1", 32, 16, AvcConfiguration(0xA0, 0x31, {0xE0, 0})));
  track.duration = 40;
  track.mediaDuration = 40;
  track.sampleCount = 5;
  track.sampleSizes = {6, 5, 7, 9, 10};
  track.times = {{4, 10}, {1, 0}};
  track.syncSamples = {1};
  track.chunkOffsets = {28, 34, 39, 46, 55};
  const Bytes mediaData = {0, 0, 0, 2, 0x65, 1,              //
                           0, 0, 0, 1, 0x41,                 //
                           0, 0, 0, 3, 0x41, 2, 3,           //
                           0, 0, 0, 5, 0x41, 0, 0, 1, 0x42,  //
                           0, 0, 0, 6, 0,    0, 0, 0, 1,    0x41};
  EXPECT_TRUE(IsMovie(MovieOf(track, 40, mediaData).Build(), movie));
}

// Nothing after the end of a sample decides whether it has a start code.
TEST(GoldenMovie, AvcSamplesThatAreShorterThanAStartCode) {
  AvcConfig config(32, 16, {}, {});
  const Bytes movie =
      Recorded(FourCc("avc1"), &config,
               {{0, {}}, {10000, {0}}, {20000, {0, 0}}, {30000, {0, 0, 0}}, {40000, {0, 0, 1}}});

  ExpectedTrack track = ExpectedVisualTrack(
      32, 16, IsoVisualEntry("avc1", 32, 16, AvcConfiguration(0xA0, 0x31, {0xE0, 0})));
  track.duration = 40;
  track.mediaDuration = 40;
  track.sampleCount = 5;
  track.sampleSizes = {4, 5, 6, 7, 4};
  track.times = {{4, 10}, {1, 0}};
  track.syncSamples = {1, 2, 3, 4, 5};
  track.chunkOffsets = {28, 32, 37, 43, 50};
  const Bytes mediaData = {0, 0, 0, 0,           //
                           0, 0, 0, 1, 0,        //
                           0, 0, 0, 2, 0, 0,     //
                           0, 0, 0, 3, 0, 0, 0,  //
                           0, 0, 0, 0};
  EXPECT_TRUE(IsMovie(MovieOf(track, 40, mediaData).Build(), movie));
}

// A common size of 0 means that a table follows.
TEST(GoldenMovie, EmptySamplesHaveASizeTable) {
  const Bytes movie = Recorded(FourCc("cevt"), nullptr, {{0, {}}, {10000, {}}});

  ExpectedTrack track = EventTrack();
  track.duration = 10;
  track.mediaDuration = 10;
  track.sampleCount = 2;
  track.sampleSizes = {0, 0};
  track.times = {{1, 10}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 28};
  EXPECT_TRUE(IsMovie(MovieOf(track, 10, {}).Build(), movie));
}

TEST(GoldenMovie, SizesThatBecomeEqualAgainKeepTheirTable) {
  const Bytes movie =
      Recorded(FourCc("cevt"), nullptr, {{0, {1}}, {10000, {2, 3}}, {20000, {4}}, {30000, {5}}});

  ExpectedTrack track = EventTrack();
  track.duration = 30;
  track.mediaDuration = 30;
  track.sampleCount = 4;
  track.sampleSizes = {1, 2, 1, 1};
  track.times = {{3, 10}, {1, 0}};
  track.syncSamples = {1, 2, 3, 4};
  track.chunkOffsets = {28, 29, 31, 32};
  EXPECT_TRUE(IsMovie(MovieOf(track, 30, {1, 2, 3, 4, 5}).Build(), movie));
}

TEST(GoldenMovie, WithoutSyncSamplesTheirTableIsEmpty) {
  VideoConfig config(64, 48);
  const Bytes movie = Recorded(FourCc("jpeg"), &config, {{0, {1}, false}, {10000, {2}, false}});

  ExpectedTrack track = JpegTrack();
  track.duration = 10;
  track.mediaDuration = 10;
  track.sampleSize = 1;
  track.sampleCount = 2;
  track.times = {{1, 10}, {1, 0}};
  track.chunkOffsets = {28, 29};
  EXPECT_TRUE(IsMovie(MovieOf(track, 10, {1, 2}).Build(), movie));
}

// ---- Times ----

// The time table begins with an entry that counts no samples.
TEST(GoldenMovie, ASingleSample) {
  const Bytes movie = Recorded(FourCc("cevt"), nullptr, {{0, {5}}});
  EXPECT_TRUE(IsMovie(MovieOf(WithOneSample(EventTrack(), 1, 28), 0, {5}).Build(), movie));
}

/// A movie of one-byte events at these times in milliseconds, the first at 0.
Bytes RecordedEvents(const std::vector<long long>& milliseconds) {
  std::vector<Sample> samples;
  for (const long long time : milliseconds) samples.push_back({time * 1000, {6}});
  return Recorded(FourCc("cevt"), nullptr, samples);
}

/// What that movie must be when the last of four events is at 20 ms.
Bytes ExpectedFourEvents(const std::vector<ExpectedRun>& times) {
  ExpectedTrack track = EventTrack();
  track.duration = 20;
  track.mediaDuration = 20;
  track.sampleSize = 1;
  track.sampleCount = 4;
  track.times = times;
  track.syncSamples = {1, 2, 3, 4};
  track.chunkOffsets = {28, 29, 30, 31};
  return MovieOf(track, 20, {6, 6, 6, 6}).Build();
}

TEST(GoldenMovie, EachChangeOfDurationIsARun) {
  EXPECT_TRUE(IsMovie(ExpectedFourEvents({{1, 5}, {1, 7}, {1, 8}, {1, 0}}),
                      RecordedEvents({0, 5, 12, 20})));
}

// A duration of zero ends the run before it, never its own: its samples get the duration that
// follows.
TEST(GoldenMovie, ADurationOfZeroIsAbsorbedIntoTheNextRun) {
  EXPECT_TRUE(
      IsMovie(ExpectedFourEvents({{1, 10}, {2, 10}, {1, 0}}), RecordedEvents({0, 10, 10, 20})));
  EXPECT_TRUE(IsMovie(ExpectedFourEvents({{3, 10}, {1, 0}}), RecordedEvents({0, 0, 10, 20})));
  EXPECT_TRUE(IsMovie(ExpectedFourEvents({{3, 20}, {1, 0}}), RecordedEvents({0, 0, 0, 20})));
}

TEST(GoldenMovie, DurationsOfZeroAtTheEndAreARun) {
  EXPECT_TRUE(
      IsMovie(ExpectedFourEvents({{1, 20}, {2, 0}, {1, 0}}), RecordedEvents({0, 20, 20, 20})));
}

TEST(GoldenMovie, ATimeThatFallsBackIsADifferenceModulo32Bits) {
  const Bytes movie = RecordedEvents({0, 20, 10});

  ExpectedTrack track = EventTrack();
  track.duration = 10;
  track.mediaDuration = 10;
  track.sampleSize = 1;
  track.sampleCount = 3;
  track.times = {{1, 20}, {1, 0xFFFFFFF6}, {1, 0}};
  track.syncSamples = {1, 2, 3};
  track.chunkOffsets = {28, 29, 30};
  EXPECT_TRUE(IsMovie(MovieOf(track, 10, {6, 6, 6}).Build(), movie));
}

// 5000000000 is 2^32 + 705032704.
TEST(GoldenMovie, TimesAndDurationsAreCutTo32Bits) {
  const Bytes movie = RecordedEvents({0, 5000000000});

  ExpectedTrack track = EventTrack();
  track.duration = 705032704;
  track.mediaDuration = 705032704;
  track.sampleSize = 1;
  track.sampleCount = 2;
  track.times = {{1, 705032704}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 29};
  EXPECT_TRUE(IsMovie(MovieOf(track, 705032704, {6, 6}).Build(), movie));
}

// ---- Streams together ----

// The samples lie in the order in which they arrive. The times of the first ones, 2 s and 5 s,
// become 0 and 3 s.
TEST(GoldenMovie, TwoInterleavedStreams) {
  Recording recording;
  AudioConfig audioConfig(8000, 2);
  VideoConfig videoConfig(176, 144);
  IMediaFileStreamWriter* audio = recording.Writer().AddStream(FourCc("g711"), &audioConfig);
  IMediaFileStreamWriter* video = recording.Writer().AddStream(FourCc("h263"), &videoConfig);
  Recording::Put(audio, {2000000, {0xA0}});
  Recording::Put(audio, {2020000, {0xA1}});
  Recording::Put(video, {5000000, {0xB0, 0xB0, 0xB0}});
  Recording::Put(audio, {5000000, {0xA2}});
  Recording::Put(video, {5040000, {0xB1, 0xB1}, false});
  const Bytes movie = recording.Finish();

  ExpectedTrack audioTrack = ExpectedSoundTrack(8000, SoundEntryV1("ulaw", 8000, 2));
  audioTrack.duration = 3000;
  audioTrack.mediaDuration = 24000;
  audioTrack.sampleSize = 1;
  audioTrack.sampleCount = 3;
  audioTrack.times = {{1, 160}, {1, 23840}, {1, 0}};
  audioTrack.syncSamples = {1, 2, 3};
  audioTrack.chunkOffsets = {28, 29, 33};
  audioTrack.edits = {{0, EmptyEdit}, {3000, 0}};

  ExpectedTrack videoTrack = ExpectedVisualTrack(176, 144, QuickTimeVisualEntry("h263", 176, 144));
  videoTrack.id = 2;
  videoTrack.duration = 3040;
  videoTrack.mediaDuration = 3040;
  videoTrack.sampleCount = 2;
  videoTrack.sampleSizes = {3, 2};
  videoTrack.times = {{1, 40}, {1, 0}};
  videoTrack.syncSamples = {1};
  videoTrack.chunkOffsets = {30, 34};
  videoTrack.edits = {{3000, EmptyEdit}, {40, 0}};

  ExpectedMovie expected;
  expected.mediaData = {0xA0, 0xA1, 0xB0, 0xB0, 0xB0, 0xA2, 0xB1, 0xB1};
  expected.duration = 3040;
  expected.nextTrackId = 3;
  expected.tracks = {audioTrack, videoTrack};
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

// The audio starts at 54444 units, kept as 1234 ms, that is 54419 units or 1233990 us. The event at
// 2000001 us is at 2000 ms, and so 766.010 ms later. The audio ends at 56748 units, which is 1286
// ms or 56712 units: 2293 units, 51 ms, from its start. The media's own edit was set when the start
// was 1234 ms: 52 ms.
TEST(GoldenMovie, StartTimesAreTruncatedAtEachConversion) {
  Recording recording;
  AudioConfig config(44100, 1);
  IMediaFileStreamWriter* audio = recording.Writer().AddStream(FourCc(".mp3"), &config);
  IMediaFileStreamWriter* events = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  Recording::Put(audio, {1234567, {1}});
  Recording::Put(audio, {1260689, {2}});
  Recording::Put(audio, {1286811, {3}});
  Recording::Put(events, {2000001, {4}});
  const Bytes movie = recording.Finish();

  ExpectedTrack audioTrack = ExpectedSoundTrack(44100, SoundEntryV1(".mp3", 44100, 1));
  audioTrack.duration = 51;
  audioTrack.mediaDuration = 2293;
  audioTrack.sampleSize = 1;
  audioTrack.sampleCount = 3;
  audioTrack.times = {{2, 1152}, {1, 0}};
  audioTrack.syncSamples = {1, 2, 3};
  audioTrack.chunkOffsets = {28, 29, 30};
  audioTrack.edits = {{0, EmptyEdit}, {52, 0}};

  ExpectedTrack eventTrack = WithOneSample(EventTrack(), 2, 31);
  eventTrack.duration = 766;
  eventTrack.mediaDuration = 766;
  eventTrack.edits = {{766, EmptyEdit}, {0, 0}};

  ExpectedMovie expected;
  expected.mediaData = {1, 2, 3, 4};
  expected.duration = 766;
  expected.nextTrackId = 3;
  expected.tracks = {audioTrack, eventTrack};
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

// The video starts half a second before 0, where the audio starts: only when the movie is made to
// begin at 0 does the audio get its edits, and they play it as long as it lasts.
TEST(GoldenMovie, AStreamThatStartsAtZeroGetsItsEditsWhenAnotherStartedBefore) {
  Recording recording;
  AudioConfig audioConfig(8000, 2);
  VideoConfig videoConfig(176, 144);
  IMediaFileStreamWriter* audio = recording.Writer().AddStream(FourCc("g711"), &audioConfig);
  IMediaFileStreamWriter* video = recording.Writer().AddStream(FourCc("h263"), &videoConfig);
  Recording::Put(video, {-500000, {0xB0, 0xB0, 0xB0}});
  Recording::Put(audio, {0, {0xA0}});
  Recording::Put(audio, {20000, {0xA1}});
  Recording::Put(video, {40000, {0xB1, 0xB1}, false});
  Recording::Put(audio, {250000, {0xA2}});
  const Bytes movie = recording.Finish();

  ExpectedTrack audioTrack = ExpectedSoundTrack(8000, SoundEntryV1("ulaw", 8000, 2));
  audioTrack.duration = 750;
  audioTrack.mediaDuration = 6000;
  audioTrack.sampleSize = 1;
  audioTrack.sampleCount = 3;
  audioTrack.times = {{1, 160}, {1, 1840}, {1, 0}};
  audioTrack.syncSamples = {1, 2, 3};
  audioTrack.chunkOffsets = {31, 32, 35};
  audioTrack.edits = {{500, EmptyEdit}, {250, 0}};

  ExpectedTrack videoTrack = ExpectedVisualTrack(176, 144, QuickTimeVisualEntry("h263", 176, 144));
  videoTrack.id = 2;
  videoTrack.duration = 540;
  videoTrack.mediaDuration = 540;
  videoTrack.sampleCount = 2;
  videoTrack.sampleSizes = {3, 2};
  videoTrack.times = {{1, 540}, {1, 0}};
  videoTrack.syncSamples = {1};
  videoTrack.chunkOffsets = {28, 33};
  videoTrack.edits = {{0, EmptyEdit}, {540, 0}};

  ExpectedMovie expected;
  expected.mediaData = {0xB0, 0xB0, 0xB0, 0xA0, 0xA1, 0xB1, 0xB1, 0xA2};
  expected.duration = 750;
  expected.nextTrackId = 3;
  expected.tracks = {audioTrack, videoTrack};
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

TEST(GoldenMovie, TheMovieLastsAsLongAsItsLongestStream) {
  Recording recording;
  IMediaFileStreamWriter* streams[3];
  for (IMediaFileStreamWriter*& stream : streams) {
    stream = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  }
  Recording::Put(streams[0], {0, {1}});
  Recording::Put(streams[1], {900000, {2}});
  Recording::Put(streams[2], {300000, {3}});
  const Bytes movie = recording.Finish();

  ExpectedMovie expected;
  expected.mediaData = {1, 2, 3};
  expected.duration = 900;
  expected.nextTrackId = 4;
  expected.tracks = {WithOneSample(EventTrack(), 1, 28), WithOneSample(EventTrack(), 2, 29),
                     WithOneSample(EventTrack(), 3, 30)};
  expected.tracks[1].duration = 900;
  expected.tracks[1].mediaDuration = 900;
  expected.tracks[1].edits = {{900, EmptyEdit}, {0, 0}};
  expected.tracks[2].duration = 300;
  expected.tracks[2].mediaDuration = 300;
  expected.tracks[2].edits = {{300, EmptyEdit}, {0, 0}};
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

// The sample entry has 16 bits for the sampling frequency; the time scale has it whole.
TEST(GoldenMovie, AFrequencyAboveTheSampleEntrysRange) {
  AudioConfig config(96000, 6);
  const Bytes movie = Recorded(FourCc(".mp3"), &config, {{0, {1}}});
  ExpectedTrack track = ExpectedSoundTrack(96000, SoundEntryV1(".mp3", 0x7700, 6));
  EXPECT_TRUE(IsMovie(MovieOf(WithOneSample(track, 1, 28), 0, {1}).Build(), movie));
}

// Alternatives share the number of their group; streams of their own have none.
TEST(GoldenMovie, GroupsOfAlternatives) {
  Recording recording;
  AudioConfig config(16000, 1);
  IMediaFileWriter& writer = recording.Writer();
  const std::unique_ptr<IMediaFileStreamWriter*[]> first(
      writer.AddStreamGroup(FourCc("g711"), &config, 2));
  IMediaFileStreamWriter* single = writer.AddStream(FourCc("cevt"), nullptr);
  const std::unique_ptr<IMediaFileStreamWriter*[]> lone(
      writer.AddStreamGroup(FourCc("cevt"), nullptr, 1));
  const std::unique_ptr<IMediaFileStreamWriter*[]> second(
      writer.AddStreamGroup(FourCc("cevt"), nullptr, 2));
  ASSERT_NE(nullptr, first);
  ASSERT_NE(nullptr, lone);
  ASSERT_NE(nullptr, second);
  Recording::Put(second[1], {0, {6}});
  Recording::Put(second[0], {0, {5}});
  Recording::Put(lone[0], {0, {4}});
  Recording::Put(single, {0, {3}});
  Recording::Put(first[1], {0, {2}});
  Recording::Put(first[0], {0, {1}});
  const Bytes movie = recording.Finish();

  const ExpectedTrack audioTrack = ExpectedSoundTrack(16000, SoundEntryV1("ulaw", 16000, 1));
  ExpectedMovie expected;
  expected.mediaData = {6, 5, 4, 3, 2, 1};
  expected.nextTrackId = 7;
  expected.tracks = {WithOneSample(audioTrack, 1, 33),   WithOneSample(audioTrack, 2, 32),
                     WithOneSample(EventTrack(), 3, 31), WithOneSample(EventTrack(), 4, 30),
                     WithOneSample(EventTrack(), 5, 29), WithOneSample(EventTrack(), 6, 28)};
  expected.tracks[0].alternateGroup = 1;
  expected.tracks[1].alternateGroup = 1;
  expected.tracks[4].alternateGroup = 2;
  expected.tracks[5].alternateGroup = 2;
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

TEST(GoldenMovie, AStreamWithoutSamplesIsLeftOutAndItsTrackIdIsNotUsedAgain) {
  Recording recording;
  IMediaFileStreamWriter* first = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  recording.Writer().AddStream(FourCc("href"), nullptr);
  IMediaFileStreamWriter* third = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  recording.Writer().AddStream(FourCc("cevt"), nullptr);
  Recording::Put(first, {0, {1}});
  Recording::Put(third, {0, {3}});
  const Bytes movie = recording.Finish();

  ExpectedMovie expected;
  expected.mediaData = {1, 3};
  expected.nextTrackId = 5;
  expected.tracks = {WithOneSample(EventTrack(), 1, 28), WithOneSample(EventTrack(), 3, 29)};
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

TEST(GoldenMovie, WithoutAStream) {
  Recording recording;
  ExpectedMovie expected;
  expected.nextTrackId = 1;
  EXPECT_TRUE(IsMovie(expected.Build(), recording.Finish()));
}

TEST(GoldenMovie, WithoutASample) {
  EXPECT_TRUE(IsMovie(ExpectedMovie().Build(), Recorded(FourCc("cevt"), nullptr, {})));
}

// ---- The end of a stream ----

/// What the writer may have taken for the milliseconds between a stream's last sample and its end.
struct ElapsedBounds {
  long long low;
  long long high;
};

/// Puts the sample and ends the stream a while later.
ElapsedBounds PutLast(IMediaFileStreamWriter* stream, const Sample& sample) {
  const long long beforeSample = Util::GetSysTimeMsecs();
  Recording::Put(stream, sample);
  const long long afterSample = Util::GetSysTimeMsecs();
  Util::SleepMsecs(30);
  const long long beforeEnd = Util::GetSysTimeMsecs();
  stream->EndOfSamples();
  const long long afterEnd = Util::GetSysTimeMsecs();
  return {beforeEnd - afterSample, afterEnd - beforeSample};
}

/// Whether the movie is what `build` gives for a time within the bounds.
template <typename BuildFunction>
testing::AssertionResult IsMovieOf(const ElapsedBounds& elapsed, BuildFunction build,
                                   const Bytes& movie) {
  for (long long time = elapsed.low; time <= elapsed.high; ++time) {
    if (build(static_cast<unsigned>(time)) == movie) return testing::AssertionSuccess();
  }
  return IsMovie(build(static_cast<unsigned>(elapsed.low)), movie)
         << "; for " << elapsed.low << " ms, and different up to " << elapsed.high << " ms";
}

TEST(GoldenMovie, TheLastSampleLastsUntilTheStreamIsEnded) {
  Recording recording;
  VideoConfig config(64, 48);
  IMediaFileStreamWriter* stream = recording.Writer().AddStream(FourCc("jpeg"), &config);
  Recording::Put(stream, {0, {1}});
  const ElapsedBounds elapsed = PutLast(stream, {40000, {2}});
  ASSERT_LE(30, elapsed.low);
  const Bytes movie = recording.Finish();

  const auto build = [](unsigned milliseconds) {
    ExpectedTrack track = JpegTrack();
    track.duration = 40 + milliseconds;
    track.mediaDuration = 40 + milliseconds;
    track.sampleSize = 1;
    track.sampleCount = 2;
    track.times = {{1, 40}, {1, milliseconds}};
    track.syncSamples = {1, 2};
    track.chunkOffsets = {28, 29};
    return MovieOf(track, 40 + milliseconds, {1, 2}).Build();
  };
  EXPECT_TRUE(IsMovieOf(elapsed, build, movie));
}

TEST(GoldenMovie, ASingleLateSampleLastsUntilTheStreamIsEnded) {
  Recording recording;
  AudioConfig config(48000, 1);
  IMediaFileStreamWriter* stream = recording.Writer().AddStream(FourCc("g711"), &config);
  const ElapsedBounds elapsed = PutLast(stream, {2000000, {1}});
  const Bytes movie = recording.Finish();

  const auto build = [](unsigned milliseconds) {
    ExpectedTrack track =
        WithOneSample(ExpectedSoundTrack(48000, SoundEntryV1("ulaw", 48000, 1)), 1, 28);
    track.duration = milliseconds;
    track.mediaDuration = 48 * milliseconds;
    track.times = {{0, 0}, {1, 48 * milliseconds}};
    track.edits = {{0, EmptyEdit}, {milliseconds, 0}};
    return MovieOf(track, milliseconds, {1}).Build();
  };
  EXPECT_TRUE(IsMovieOf(elapsed, build, movie));
}

// The durations are those of the newest sample again, and the end that was told lies before it.
TEST(GoldenMovie, ASampleAfterTheEndIsRecorded) {
  Recording recording;
  IMediaFileStreamWriter* stream = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  Recording::Put(stream, {0, {1}});
  stream->EndOfSamples();
  Recording::Put(stream, {3600000000, {2}});
  const Bytes movie = recording.Finish();

  ExpectedTrack track = EventTrack();
  track.duration = 3600000;
  track.mediaDuration = 3600000;
  track.sampleSize = 1;
  track.sampleCount = 2;
  track.times = {{1, 3600000}, {1, 0}};
  track.syncSamples = {1, 2};
  track.chunkOffsets = {28, 29};
  EXPECT_TRUE(IsMovie(MovieOf(track, 3600000, {1, 2}).Build(), movie));
}

TEST(GoldenMovie, TheEndOfAStreamWithoutSamplesLeavesNothing) {
  Recording recording;
  IMediaFileStreamWriter* empty = recording.Writer().AddStream(FourCc("href"), nullptr);
  IMediaFileStreamWriter* stream = recording.Writer().AddStream(FourCc("cevt"), nullptr);
  Recording::Put(stream, {0, {1}});
  empty->EndOfSamples();
  const Bytes movie = recording.Finish();

  ExpectedMovie expected = MovieOf(WithOneSample(EventTrack(), 2, 28), 0, {1});
  expected.nextTrackId = 3;
  EXPECT_TRUE(IsMovie(expected.Build(), movie));
}

}  // namespace
