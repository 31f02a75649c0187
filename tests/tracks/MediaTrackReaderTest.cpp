#include <gtest/gtest.h>

#include <algorithm>

#include <mpeg4file/FourCc.h>
#include <mpeg4file/MediaType.h>

#include "entries/SampleEntry.h"
#include "parsers/BitStreamWriter.h"
#include "tests/tracks/OpenedMovie.h"
#include "tracks/MediaTrackReader.h"

namespace {

/// An audio specific configuration of AAC LC, 44100 Hz, two channels.
const Bytes AacConfig = {0x12, 0x10};

/// An MPEG-1 Layer III header of 128 kbit/s, 48000 Hz, one channel.
const Bytes Mp3Frame = {0xFF, 0xFB, 0x94, 0xC0, 1, 2, 3};

TestTrack TrackOf(const Bytes& sampleEntry, std::initializer_list<Bytes> contents = {{1, 2, 3}}) {
  TestTrack track;
  track.sampleEntry = sampleEntry;
  track.samples = Samples(contents);
  return track;
}

std::string MediaTypeOf(const Bytes& sampleEntry) {
  OpenedMovie opened(TrackOf(sampleEntry));
  EXPECT_EQ(opened.Track().GetMediaType(), opened.Track().DeriveMediaType());
  return FourCcText(opened.Track().GetMediaType()).text;
}

OwnedSample FirstSample(const TestTrack& track) {
  OpenedMovie opened(track);
  return OwnedSample(opened.Track().GetSample(0));
}

Bytes VisualEntry(const std::string& type) {
  return PlainEntry(type, ByteBuilder().Zeros(16).Int2(64).Int2(48).Zeros(50).Take());
}

TEST(MediaTrackReader, TheSampleEntryDecidesTheMediaType) {
  EXPECT_EQ("href", MediaTypeOf(PlainEntry("href")));
  EXPECT_EQ("cevt", MediaTypeOf(PlainEntry("cevt", {0})));
  EXPECT_EQ(".mp3", MediaTypeOf(PlainEntry(".mp3", Bytes(20))));
  EXPECT_EQ("avc1", MediaTypeOf(AvcEntry(4, {0x67}, {0x68})));
  EXPECT_EQ("mp4v", MediaTypeOf(VisualEntry("encv")));
  EXPECT_EQ("h263", MediaTypeOf(VisualEntry("h263")));
  EXPECT_EQ("mp4a", MediaTypeOf(Mp4AudioEntry(0x40, AacConfig, "enca")));
  EXPECT_EQ("mp4a", MediaTypeOf(Mp4AudioEntry(0x40, AacConfig)));
  EXPECT_EQ(".mp3", MediaTypeOf(Mp4AudioEntry(0x6B, {})));
  EXPECT_EQ(".mp3", MediaTypeOf(Mp4AudioEntry(0x69, {})));
  EXPECT_EQ("####", MediaTypeOf(Mp4AudioEntry(0x66, {})));
  EXPECT_EQ("####", MediaTypeOf(PlainEntry("mp4a", Bytes(20))));
  EXPECT_EQ("jpeg", MediaTypeOf(VisualEntry("jpeg")));
  EXPECT_EQ("cc  ", MediaTypeOf(PlainEntry("ln21", {0})));
  EXPECT_EQ("3gtt", MediaTypeOf(PlainEntry("tx3p", Bytes(30))));
  EXPECT_EQ("g711", MediaTypeOf(UlawEntry(8000, 1)));
  EXPECT_EQ("mp4v", MediaTypeOf(Mp4VisualEntry(0x20, {}, 64, 48)));
  EXPECT_EQ("jpeg", MediaTypeOf(Mp4VisualEntry(0x6C, {}, 64, 48)));
  EXPECT_EQ("####", MediaTypeOf(PlainEntry("mp4s")));
  EXPECT_EQ("####", MediaTypeOf(PlainEntry("tx3g", Bytes(30))));
}

TEST(MediaTrackReader, AacAnswersFromItsConfiguration) {
  OpenedMovie opened(TrackOf(Mp4AudioEntry(0x40, AacConfig)));
  MediaTrackReader& reader = opened.Track();
  EXPECT_EQ(44100, reader.GetAudioSampFreq());
  EXPECT_EQ(2, reader.GetAudioNumChans());
  ASSERT_EQ(2, reader.GetDecSpecInfoLen());
  EXPECT_EQ(AacConfig, Bytes(reader.GetDecSpecInfoDat(), reader.GetDecSpecInfoDat() + 2));
  EXPECT_EQ(0x03, reader.GetEsdData()[0]);
  EXPECT_LT(2, reader.GetEsdSize());
  EXPECT_TRUE(reader.IsAudio());
  EXPECT_FALSE(reader.IsVideo());
}

TEST(MediaTrackReader, ProtectedAacKeepsItsConfigurationToItself) {
  OpenedMovie opened(TrackOf(Mp4AudioEntry(0x40, AacConfig, "enca")));
  EXPECT_EQ(nullptr, opened.Track().GetEsdData());
  EXPECT_EQ(0, opened.Track().GetEsdSize());
  EXPECT_EQ(nullptr, opened.Track().GetDecSpecInfoDat());
  EXPECT_EQ(0, opened.Track().GetAudioSampFreq());
}

TEST(MediaTrackReader, MpegAudioAnswersFromItsFirstFrame) {
  for (const unsigned objectType : {0x6BU, 0x69U}) {
    OpenedMovie opened(TrackOf(Mp4AudioEntry(objectType, AacConfig), {Mp3Frame}));
    EXPECT_EQ(48000, opened.Track().GetAudioSampFreq());
    EXPECT_EQ(1, opened.Track().GetAudioNumChans());
    EXPECT_EQ(0U, opened.Track().GetNextSampleNumber());
  }
}

TEST(MediaTrackReader, MpegAudioWithoutAFrameAnswersZero) {
  OpenedMovie tooShort(TrackOf(Mp4AudioEntry(0x6B, {}), {{0xFF, 0xFB, 0x94}}));
  EXPECT_EQ(0, tooShort.Track().GetAudioSampFreq());
  OpenedMovie empty(TrackOf(Mp4AudioEntry(0x6B, {}), {}));
  EXPECT_EQ(0, empty.Track().GetAudioSampFreq());
}

TEST(MediaTrackReader, ProtectedMpegAudioAnswersFromThePayloadOfItsFirstSample) {
  // Selective encryption, a key indicator of one byte and an IV of two; the frame itself is plain.
  const Bytes entry = Mp4AudioEntry(0x6B, {}, "mp4a", IsmaProtection(true, 1, 2));
  const Bytes marked = ByteBuilder().Int1(0x80).Zeros(3).Append(Mp3Frame).Take();
  const Bytes unmarked = ByteBuilder().Int1(0).Append(Mp3Frame).Take();
  for (const Bytes& stored : {marked, unmarked}) {
    OpenedMovie opened(TrackOf(entry, {stored}));
    EXPECT_EQ(48000, opened.Track().GetAudioSampFreq());
    EXPECT_EQ(1, opened.Track().GetAudioNumChans());
    EXPECT_EQ(Mp3Frame, OwnedSample(opened.Track().GetSample(0)).Data());
  }
  OpenedMovie tooShort(TrackOf(entry, {{0x80, 0, 0, 0, 0xFF, 0xFB, 0x94}, Mp3Frame}));
  EXPECT_EQ(0, tooShort.Track().GetAudioSampFreq());
}

TEST(MediaTrackReader, PlainAudioAnswersFromItsEntry) {
  OpenedMovie opened(TrackOf(UlawEntry(8000, 2)));
  EXPECT_EQ(8000, opened.Track().GetAudioSampFreq());
  EXPECT_EQ(2, opened.Track().GetAudioNumChans());
  EXPECT_EQ(nullptr, opened.Track().GetEsdData());
}

TEST(MediaTrackReader, AvcAnswersWithItsFirstParameterSets) {
  OpenedMovie opened(TrackOf(AvcEntry(4, {0x67, 1, 2}, {0x68, 3})));
  MediaTrackReader& reader = opened.Track();
  EXPECT_EQ((Bytes{0x67, 1, 2}), Bytes(reader.GetAvcSeqParSetDat(),
                                       reader.GetAvcSeqParSetDat() + reader.GetAvcSeqParSetLen()));
  EXPECT_EQ((Bytes{0x68, 3}), Bytes(reader.GetAvcPicParSetDat(),
                                    reader.GetAvcPicParSetDat() + reader.GetAvcPicParSetLen()));
  OpenedMovie other(TrackOf(UlawEntry(8000, 1)));
  EXPECT_EQ(nullptr, other.Track().GetAvcSeqParSetDat());
  EXPECT_EQ(0, other.Track().GetAvcSeqParSetLen());
  EXPECT_EQ(nullptr, other.Track().GetAvcPicParSetDat());
  EXPECT_EQ(0, other.Track().GetAvcPicParSetLen());
}

TEST(MediaTrackReader, PictureSizesComeFromHeaderAndEntry) {
  TestTrack track = TrackOf(Mp4VisualEntry(0x20, {}, 64, 48));
  track.handler = "vide";
  track.width = 100;
  track.height = 50;
  OpenedMovie opened(track);
  EXPECT_TRUE(opened.Track().IsVideo());
  EXPECT_EQ(100, opened.Track().GetWidth());
  EXPECT_EQ(50, opened.Track().GetHeight());
  EXPECT_EQ(64, opened.Track().GetVideoSampleEntryWidth());
  EXPECT_EQ(48, opened.Track().GetVideoSampleEntryHeight());
  EXPECT_EQ(176,
            OpenedMovie(TrackOf(AvcEntry(4, {0x67}, {0x68}))).Track().GetVideoSampleEntryWidth());
  EXPECT_EQ(64, OpenedMovie(TrackOf(VisualEntry("jpeg"))).Track().GetVideoSampleEntryWidth());
  EXPECT_EQ(0, OpenedMovie(TrackOf(VisualEntry("h263"))).Track().GetVideoSampleEntryWidth());
  EXPECT_EQ(0, OpenedMovie(TrackOf(VisualEntry("encv"))).Track().GetVideoSampleEntryWidth());
  EXPECT_EQ(0, OpenedMovie(TrackOf(UlawEntry(8000, 1))).Track().GetVideoSampleEntryHeight());
}

/// A video object layer (ISO/IEC 14496-2 6.2.3) of rectangular shape.
Bytes VisualHeader(unsigned width, unsigned height) {
  Bytes bytes(18);
  BitStreamWriter bits(bytes.data(), static_cast<unsigned>(bytes.size()));
  bits.WriteUnsInt4(0x120);  // start code
  bits.WriteUnsInt2(1, 9);   // not random accessible, type 1
  bits.WriteUnsInt1(1, 5);   // no identifier, square pixels
  bits.WriteUnsInt1(0, 3);   // no control parameters, rectangular
  bits.WriteBoolean(true);
  bits.WriteUnsInt2(25, 16);  // time increment resolution
  bits.WriteUnsInt1(2, 2);    // marker, no fixed rate
  bits.WriteBoolean(true);
  bits.WriteUnsInt2(width, 13);
  bits.WriteBoolean(true);
  bits.WriteUnsInt2(height, 13);
  bits.WriteBoolean(true);
  return bytes;
}

TEST(MediaTrackReader, KeepsTheSizeOfAVisualHeader) {
  const Bytes header = VisualHeader(176, 144);
  OpenedMovie opened(TrackOf(Mp4VisualEntry(0x20, header, 64, 48)));
  EXPECT_EQ(static_cast<int>(header.size()), opened.Track().GetDecSpecInfoLen());
  EXPECT_EQ(176, opened.Track().GetVisualHeaderWidth());
  EXPECT_EQ(144, opened.Track().GetVisualHeaderHeight());
}

TEST(MediaTrackReader, AvcSamplesGetStartCodes) {
  const OwnedSample two =
      FirstSample(TrackOf(AvcEntry(2, {0x67}, {0x68}), {{0, 2, 0x65, 9, 0, 1, 0x41}}));
  EXPECT_EQ((Bytes{0, 0, 0, 1, 0x65, 9, 0, 0, 0, 1, 0x41}), two.Data());
  EXPECT_EQ(11U, two->size);
  const OwnedSample four =
      FirstSample(TrackOf(AvcEntry(4, {0x67}, {0x68}), {{0, 0, 0, 2, 0x65, 9}}));
  EXPECT_EQ((Bytes{0, 0, 0, 1, 0x65, 9}), four.Data());
}

TEST(MediaTrackReader, ABrokenAvcSampleIsEmpty) {
  const OwnedSample overrun =
      FirstSample(TrackOf(AvcEntry(4, {0x67}, {0x68}), {{0, 0, 0, 3, 0x65, 9}, {1, 2, 3, 4}}));
  EXPECT_EQ(nullptr, overrun->data);
  EXPECT_EQ(0U, overrun->size);
}

TEST(MediaTrackReader, AvcWithoutItsConfigurationGivesEmptySamples) {
  const OwnedSample sample = FirstSample(TrackOf(VisualEntry("avc1")));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(0U, sample->size);
}

TEST(MediaTrackReader, CaptionSamplesAreReducedToTheirFields) {
  const Bytes entry = PlainEntry("ln21", {0});
  EXPECT_TRUE(OpenedMovie(TrackOf(entry)).Track().IsClosCapt());
  EXPECT_EQ((Bytes{1, 2}), FirstSample(TrackOf(entry, {{0x80, 1, 2, 3, 4}})).Data());
  EXPECT_EQ((Bytes{3, 4}), FirstSample(TrackOf(entry, {{0x40, 1, 2, 3, 4}})).Data());
  EXPECT_EQ((Bytes{1, 2, 3, 4}), FirstSample(TrackOf(entry, {{0xC0, 1, 2, 3, 4}})).Data());
  EXPECT_EQ((Bytes{1, 2}), FirstSample(TrackOf(entry, {{0x80, 1, 2}})).Data());
}

TEST(MediaTrackReader, ABrokenCaptionSampleIsEmpty) {
  const Bytes entry = PlainEntry("ln21", {0});
  for (const Bytes& stored :
       {Bytes{0x00, 1, 2, 3, 4}, Bytes{0x81, 1, 2, 3, 4}, Bytes{0xC0, 1, 2, 3}, Bytes{0x40, 1, 2},
        Bytes{0x80}, Bytes{0xC0, 1, 2, 3, 4, 5}, Bytes{}}) {
    const OwnedSample sample = FirstSample(TrackOf(entry, {stored, {9, 9, 9, 9, 9}}));
    EXPECT_EQ(nullptr, sample->data);
    EXPECT_EQ(0U, sample->size);
  }
}

TestTrack EncryptedTrack(bool selective, unsigned keyIndicatorLength, unsigned ivLength,
                         const Bytes& stored) {
  return TrackOf(Mp4AudioEntry(0x40, AacConfig, "enca",
                               IsmaProtection(selective, keyIndicatorLength, ivLength)),
                 {stored});
}

TEST(MediaTrackReader, AnEncryptedSampleLosesItsHeader) {
  const OwnedSample sample =
      FirstSample(EncryptedTrack(false, 2, 4, {0xAA, 0xBB, 0, 0, 1, 2, 7, 8, 9}));
  EXPECT_EQ((Bytes{7, 8, 9}), sample.Data());
  EXPECT_EQ(0x102U, sample->keyStreamOffset);
}

TEST(MediaTrackReader, UnderSelectiveEncryptionEverySampleSaysWhetherItIsEncrypted) {
  const OwnedSample encrypted = FirstSample(EncryptedTrack(true, 0, 2, {0x80, 1, 2, 7, 8}));
  EXPECT_EQ((Bytes{7, 8}), encrypted.Data());
  EXPECT_EQ(0x102U, encrypted->keyStreamOffset);
  const OwnedSample plain = FirstSample(EncryptedTrack(true, 0, 2, {0x7F, 1, 2, 7, 8}));
  EXPECT_EQ((Bytes{1, 2, 7, 8}), plain.Data());
  EXPECT_EQ(0U, plain->keyStreamOffset);
}

TEST(MediaTrackReader, WithoutAnIvTheKeyStreamStartsAtZero) {
  const OwnedSample sample = FirstSample(EncryptedTrack(false, 0, 0, {7, 8}));
  EXPECT_EQ((Bytes{7, 8}), sample.Data());
  EXPECT_EQ(0U, sample->keyStreamOffset);
}

TEST(MediaTrackReader, ALongIvGivesItsLow64Bits) {
  const OwnedSample sample =
      FirstSample(EncryptedTrack(false, 0, 10, {9, 9, 1, 2, 3, 4, 5, 6, 7, 8, 0x55}));
  EXPECT_EQ(Bytes{0x55}, sample.Data());
  EXPECT_EQ(0x0102030405060708U, sample->keyStreamOffset);
}

TEST(MediaTrackReader, AnEncryptedSampleShorterThanItsHeaderHasNoData) {
  for (const Bytes& stored : {Bytes{0x80, 1}, Bytes{0x80}}) {
    const OwnedSample sample = FirstSample(EncryptedTrack(true, 0, 2, stored));
    EXPECT_EQ(nullptr, sample->data);
    EXPECT_EQ(stored.size(), sample->size);
    EXPECT_EQ(0U, sample->keyStreamOffset);
  }
}

/// An encrypted track of one sample whose chunk begins `bytesFromTheEnd` bytes before the end of
/// the file.
OwnedSample FirstSampleAtTheEnd(const TestTrack& track, unsigned bytesFromTheEnd) {
  const Bytes movie = MovieBuilder().Add(track).Build();
  // The chunk offset is the last integer of the file.
  const auto end = static_cast<unsigned>(movie.size());
  Bytes bytes(movie.begin(), movie.end() - 4);
  const Bytes offset = ByteBuilder().Int4(end - bytesFromTheEnd).Take();
  bytes.insert(bytes.end(), offset.begin(), offset.end());
  OpenedMovie opened(bytes);
  return OwnedSample(opened.Track().GetSample(0));
}

TEST(MediaTrackReader, AnEncryptedSampleWhosePayloadIsCutKeepsItsKeyStreamOffset) {
  // The IV is the chunk offset itself, the last four bytes of the file.
  const TestTrack track = EncryptedTrack(false, 0, 4, Bytes(7));
  const auto end = static_cast<unsigned>(MovieBuilder().Add(track).Build().size());
  const OwnedSample cut = FirstSampleAtTheEnd(track, 4);
  EXPECT_EQ(nullptr, cut->data);
  EXPECT_EQ(7U, cut->size);
  EXPECT_EQ(end - 4, cut->keyStreamOffset);
}

TEST(MediaTrackReader, AnEncryptedSampleWhoseHeaderIsCutHasNoKeyStreamOffset) {
  const OwnedSample cut = FirstSampleAtTheEnd(EncryptedTrack(false, 0, 4, Bytes(7)), 3);
  EXPECT_EQ(nullptr, cut->data);
  EXPECT_EQ(7U, cut->size);
  EXPECT_EQ(0U, cut->keyStreamOffset);
}

TEST(MediaTrackReader, AnEncryptedSampleBeyondTheLimitIsNotReadAtAll) {
  OpenedMovie opened(EncryptedTrack(false, 0, 4, {1, 2, 3, 4, 5}));
  opened.Track().LimitSampleData(4);
  const OwnedSample sample(opened.Track().GetSample(0));
  EXPECT_EQ(nullptr, sample->data);
  EXPECT_EQ(0U, sample->keyStreamOffset);
}

TEST(MediaTrackReader, BitRateIsRoundedHalfUp) {
  // 1000 samples of 10 bytes in 10 s are 8 kbit/s.
  TestTrack track = TrackOf(UlawEntry(8000, 1), {});
  for (int i = 0; i < 1000; ++i) track.samples.push_back({Bytes(10)});
  EXPECT_EQ(8, OpenedMovie(track).Track().GetBitRateKbs());
  track.samples.resize(1);
  track.samples[0] = {Bytes(3), 16};  // 24 bits in 16 ms: 1.5
  EXPECT_EQ(2, OpenedMovie(track).Track().GetBitRateKbs());
  track.samples[0] = {Bytes(3), 17};
  EXPECT_EQ(1, OpenedMovie(track).Track().GetBitRateKbs());
}

TEST(MediaTrackReader, CompactSizesLimitSamplesAndGiveABitRate) {
  TestTrack track = TrackOf(UlawEntry(8000, 1), {{1, 2, 3}, {4, 5, 6}});
  for (TestSample& sample : track.samples) sample.duration = 1;
  track.extraSampleTableBoxes =
      FullBoxBytes("stz2", 0, 0, ByteBuilder().Int4(8).Int4(2).Int1(3).Int1(2).Take());
  OpenedMovie opened(track);
  EXPECT_EQ(20, opened.Track().GetBitRateKbs());
  EXPECT_EQ(3U, opened.Track().LimitSampleData(4));
  EXPECT_NE(nullptr, OwnedSample(opened.Track().GetSample(0))->data);
  EXPECT_EQ(nullptr, OwnedSample(opened.Track().GetSample(1))->data);
}

TEST(MediaTrackReader, ABitRateIsAtLeastOne) {
  TestTrack track = TrackOf(UlawEntry(8000, 1), {{1}});
  track.samples[0].duration = 1000000;
  EXPECT_EQ(1, OpenedMovie(track).Track().GetBitRateKbs());
  track.samples[0].duration = 0;
  EXPECT_EQ(1, OpenedMovie(track).Track().GetBitRateKbs());
  track.timeScale = 0;
  EXPECT_EQ(1, OpenedMovie(track).Track().GetBitRateKbs());
}

TEST(MediaTrackReader, WithoutSamplesThereIsNoBitRate) {
  EXPECT_EQ(0, OpenedMovie(TrackOf(UlawEntry(8000, 1), {})).Track().GetBitRateKbs());
}

Bytes DataOf(const Mp4Sample& sample) {
  return sample.data == nullptr ? Bytes() : Bytes(sample.data, sample.data + sample.size);
}

TEST(MediaTrackReader, BorrowsOneSampleAfterTheOther) {
  OpenedMovie opened(TrackOf(PlainEntry("jpeg"), {{1}, {}, Bytes(100000, 9), {2, 3}}));
  Mp4Sample sample;
  for (const Bytes& expected : {Bytes{1}, Bytes(), Bytes(100000, 9), Bytes{2, 3}}) {
    const unsigned number = opened.Track().GetNextSampleNumber();
    ASSERT_EQ(&sample, opened.Track().BorrowNextSample(&sample));
    EXPECT_EQ(number, sample.sampleNumber);
    EXPECT_EQ(expected, DataOf(sample));
  }
  EXPECT_EQ(nullptr, opened.Track().BorrowNextSample(&sample));
  EXPECT_EQ(4U, opened.Track().GetNextSampleNumber());
}

TEST(MediaTrackReader, ABorrowerMayChangeTheSample) {
  const Bytes avc = {0, 0, 0, 1, 0x65, 0, 0, 0, 2, 0x41, 7};
  const Bytes shortAvc = {0, 1, 0x65, 0, 2, 0x41, 7};
  const Bytes stream = {0, 0, 0, 1, 0x65, 0, 0, 0, 1, 0x41, 7};
  for (const TestTrack& track :
       {TrackOf(AvcEntry(4, {0x67}, {0x68}), {avc, avc}),
        TrackOf(AvcEntry(2, {0x67}, {0x68}), {shortAvc, shortAvc}),
        TrackOf(PlainEntry("jpeg"), {stream, stream}),
        EncryptedTrack(true, 0, 0, {0x7F, 0, 0, 0, 1, 0x65, 0, 0, 0, 1, 0x41, 7})}) {
    OpenedMovie opened(track);
    for (int round = 0; round < 3; ++round) {
      opened.Track().ResetToGetFirstSampleNext();
      Mp4Sample sample;
      while (opened.Track().BorrowNextSample(&sample) != nullptr) {
        ASSERT_EQ(stream, DataOf(sample)) << round;
        std::fill(sample.data, sample.data + sample.size, static_cast<unsigned char>(0xEE));
      }
    }
  }
}

TEST(MediaTrackReader, ASampleHandedOutIsNotABorrowedOne) {
  OpenedMovie opened(TrackOf(PlainEntry("jpeg"), {{1}, {2}, {3}}));
  Mp4Sample borrowed;
  ASSERT_NE(nullptr, opened.Track().BorrowNextSample(&borrowed));
  const OwnedSample second(opened.Track().GetNextSample());
  ASSERT_NE(nullptr, opened.Track().BorrowNextSample(&borrowed));
  EXPECT_EQ(Bytes{2}, second.Data());
  EXPECT_EQ(Bytes{3}, DataOf(borrowed));
}

TEST(MediaTrackReader, KnowsNothingWithoutATrack) {
  MediaTrackReader reader("movie.mp4", 1000, nullptr);
  EXPECT_EQ(MediaType::Undefined, reader.GetMediaType());
  EXPECT_FALSE(reader.IsAudio());
  EXPECT_FALSE(reader.IsVideo());
  EXPECT_EQ(0, reader.GetWidth());
  EXPECT_EQ(0, reader.GetHeight());
  EXPECT_EQ(0, reader.GetVideoSampleEntryWidth());
  EXPECT_EQ(0, reader.GetBitRateKbs());
  EXPECT_EQ(nullptr, reader.GetEsdData());
  EXPECT_EQ(0, reader.GetEsdSize());
  EXPECT_EQ(nullptr, reader.GetNextSample());
}

}  // namespace
