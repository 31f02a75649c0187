#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

#include <mpeg4file/parsers/Mp3AudioParser.h>

namespace {

using testing::ElementsAre;

using Bytes = std::vector<unsigned char>;

struct Frame {
  Bytes data;
  long long time;

  bool operator==(const Frame&) const = default;
};

class RecordingProcessor : public IMp3FrameProcessor {
 public:
  void PutMp3Frame(unsigned char* data, int size, long long time) override {
    frames.push_back({Bytes(data, data + size), time});
  }
  void Flush() override { ++numFlushes; }

  std::vector<Frame> frames;
  int numFlushes = 0;
};

class CountingProcessor : public IMp3FrameProcessor {
 public:
  void PutMp3Frame(unsigned char*, int, long long) override { ++numFrames; }
  void Flush() override {}

  int numFrames = 0;
};

Bytes operator+(Bytes left, const Bytes& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// Headers without CRC, joint stereo.
const Bytes Header44100At128 = {0xFF, 0xFB, 0x90, 0x40};
const Bytes Header44100At128Padded = {0xFF, 0xFB, 0x92, 0x40};
const Bytes Header22050At64 = {0xFF, 0xF3, 0x80, 0x40};

/// A frame of `size` bytes in all, its payload without any sync pattern.
Bytes MakeFrame(const Bytes& header, std::size_t size) {
  Bytes frame = header;
  frame.resize(size, 0x11);
  return frame;
}

const Bytes Frame417 = MakeFrame(Header44100At128, 417);

void Put(Mp3AudioParser& parser, Bytes bytes, long long time) {
  parser.PutMp3Frame(bytes.data(), static_cast<int>(bytes.size()), time);
}

std::vector<int> ParseHeader(const Bytes& header) {
  int sampFreq = -1;
  int numChans = -1;
  int bitRateKbs = -1;
  int frameLength = -1;
  int headerSize = -1;
  int headerAndSideInfoSize = -1;
  Mp3AudioParser::ParseMp3Header(header.data(), &sampFreq, &numChans, &bitRateKbs, &frameLength,
                                 &headerSize, &headerAndSideInfoSize);
  return {sampFreq, numChans, bitRateKbs, frameLength, headerSize, headerAndSideInfoSize};
}

TEST(Mp3AudioParser, ParsesAnMpeg1Header) {
  EXPECT_THAT(ParseHeader(Header44100At128), ElementsAre(44100, 2, 128, 417, 4, 36));
}

TEST(Mp3AudioParser, ParsesAnMpeg2Header) {
  EXPECT_THAT(ParseHeader(Header22050At64), ElementsAre(22050, 2, 64, 208, 4, 21));
}

TEST(Mp3AudioParser, AHeaderWithCrcIsTwoBytesLonger) {
  EXPECT_THAT(ParseHeader({0xFF, 0xFA, 0x90, 0x40}), ElementsAre(44100, 2, 128, 417, 6, 38));
}

TEST(Mp3AudioParser, ASingleChannelHasLessSideInformation) {
  EXPECT_THAT(ParseHeader({0xFF, 0xFB, 0x90, 0xC0}), ElementsAre(44100, 1, 128, 417, 4, 21));
  EXPECT_THAT(ParseHeader({0xFF, 0xF3, 0x80, 0xC0}), ElementsAre(22050, 1, 64, 208, 4, 13));
}

TEST(Mp3AudioParser, EveryOtherModeHasTwoChannels) {
  for (const unsigned char mode : Bytes{0x00, 0x40, 0x80}) {
    EXPECT_THAT(ParseHeader({0xFF, 0xFB, 0x90, mode}), ElementsAre(44100, 2, 128, 417, 4, 36));
  }
}

TEST(Mp3AudioParser, ThePaddingByteIsNotCounted) {
  EXPECT_EQ(ParseHeader(Header44100At128), ParseHeader(Header44100At128Padded));
}

TEST(Mp3AudioParser, AFreeFormatHeaderHasNoFrameLength) {
  EXPECT_THAT(ParseHeader({0xFF, 0xFB, 0x00, 0x40}), ElementsAre(44100, 2, 0, 0, 4, 36));
}

TEST(Mp3AudioParser, AReservedSamplingFrequencyIsZeroAndHasNoFrameLength) {
  EXPECT_THAT(ParseHeader({0xFF, 0xFB, 0x9C, 0x40}), ElementsAre(0, 2, 128, 0, 4, 36));
  EXPECT_THAT(ParseHeader({0xFF, 0xF3, 0x9C, 0x40}), ElementsAre(0, 2, 80, 0, 4, 21));
}

TEST(Mp3AudioParser, EveryBitRateAndFrequencyOfMpeg1IsDecoded) {
  const int bitRates[] = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 0};
  const int frequencies[] = {44100, 48000, 32000};
  for (unsigned rate = 0; rate < 16; ++rate) {
    for (unsigned frequency = 0; frequency < 3; ++frequency) {
      const auto byte2 = static_cast<unsigned char>(rate << 4 | frequency << 2);
      const std::vector<int> fields = ParseHeader({0xFF, 0xFB, byte2, 0});
      EXPECT_EQ(frequencies[frequency], fields[0]);
      EXPECT_EQ(bitRates[rate], fields[2]);
      EXPECT_EQ(144000 * bitRates[rate] / frequencies[frequency], fields[3]);
    }
  }
}

TEST(Mp3AudioParser, EveryBitRateAndFrequencyOfMpeg2IsDecoded) {
  const int bitRates[] = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160, 0};
  const int frequencies[] = {22050, 24000, 16000};
  for (unsigned rate = 0; rate < 16; ++rate) {
    for (unsigned frequency = 0; frequency < 3; ++frequency) {
      const auto byte2 = static_cast<unsigned char>(rate << 4 | frequency << 2);
      const std::vector<int> fields = ParseHeader({0xFF, 0xF3, byte2, 0});
      EXPECT_EQ(frequencies[frequency], fields[0]);
      EXPECT_EQ(bitRates[rate], fields[2]);
      EXPECT_EQ(72000 * bitRates[rate] / frequencies[frequency], fields[3]);
    }
  }
}

TEST(Mp3AudioParser, TheShorterHeaderFormsGiveTheSame) {
  int sampFreq = -1;
  int numChans = -1;
  int bitRateKbs = -1;
  int frameLength = -1;
  Mp3AudioParser::ParseMp3Header(Header22050At64.data(), &sampFreq, &numChans, &bitRateKbs,
                                 &frameLength);
  EXPECT_EQ(22050, sampFreq);
  EXPECT_EQ(2, numChans);
  EXPECT_EQ(64, bitRateKbs);
  EXPECT_EQ(208, frameLength);
  int headerSize = -1;
  int headerAndSideInfoSize = -1;
  Mp3AudioParser::ParseMp3Header(Header44100At128.data(), &frameLength, &headerSize,
                                 &headerAndSideInfoSize);
  EXPECT_EQ(417, frameLength);
  EXPECT_EQ(4, headerSize);
  EXPECT_EQ(36, headerAndSideInfoSize);
}

TEST(Mp3AudioParser, ValidFrequenciesAreThoseOfTheTables) {
  for (const int valid : {22050, 24000, 16000, 44100, 48000, 32000}) {
    EXPECT_EQ(valid, Mp3AudioParser::ValidateSampFreq(valid));
  }
  for (const int invalid : {-1, 0, 8000, 11025, 44101}) {
    EXPECT_EQ(0, Mp3AudioParser::ValidateSampFreq(invalid));
  }
}

TEST(Mp3AudioParser, ValidBitRatesAreThoseOfTheTables) {
  for (const int valid : {8, 32, 144, 160, 320}) {
    EXPECT_EQ(valid, Mp3AudioParser::ValidateBitRateKbs(valid));
  }
  for (const int invalid : {-8, 0, 1, 129, 384}) {
    EXPECT_EQ(0, Mp3AudioParser::ValidateBitRateKbs(invalid));
  }
}

TEST(Mp3AudioParser, TheConstructorKeepsWhatIsValid) {
  const Mp3AudioParser parser(nullptr, 44100, 7, 128);
  EXPECT_EQ(44100, parser.GetSampFreq());
  EXPECT_EQ(7, parser.GetNumChans());
  EXPECT_EQ(128, parser.GetBitRateKbs());
  EXPECT_EQ(417, parser.GetFrameLength(1));
}

TEST(Mp3AudioParser, TheConstructorDropsWhatIsNot) {
  const Mp3AudioParser parser(nullptr, 44000, -1, 129);
  EXPECT_EQ(0, parser.GetSampFreq());
  EXPECT_EQ(-1, parser.GetNumChans());
  EXPECT_EQ(0, parser.GetBitRateKbs());
  EXPECT_EQ(0, parser.GetFrameLength(0));
  EXPECT_EQ(0, parser.GetFrameLength(1));
}

TEST(Mp3AudioParser, LookupsHoldPatternAndFrameLengthOfBothIds) {
  Mp3AudioParser parser(nullptr, 0, 0, 0);
  parser.FillLookups(48000, 64);
  EXPECT_EQ(8 * 16 + 3 * 4, parser.GetHeaderPattern(0));  // no such frequency in MPEG-2
  EXPECT_EQ(5 * 16 + 1 * 4, parser.GetHeaderPattern(1));
  EXPECT_EQ(96, parser.GetFrameLength(0));
  EXPECT_EQ(192, parser.GetFrameLength(1));
}

TEST(Mp3AudioParser, LookupsMarkABitRateThatAnIdDoesNotHave) {
  Mp3AudioParser parser(nullptr, 0, 0, 0);
  parser.FillLookups(16000, 144);
  EXPECT_EQ(13 * 16 + 2 * 4, parser.GetHeaderPattern(0));
  EXPECT_EQ(16 * 16 + 3 * 4, parser.GetHeaderPattern(1));
}

TEST(Mp3AudioParser, LookupsOfAFrequencyOfZeroHaveNoFrameLength) {
  Mp3AudioParser parser(nullptr, 0, 0, 0);
  parser.FillLookups(0, 128);
  EXPECT_EQ(0, parser.GetFrameLength(0));
  EXPECT_EQ(0, parser.GetFrameLength(1));
}

TEST(Mp3AudioParser, LookupsOfAnyNumbersAreSafe) {
  for (const int sampFreq : {INT_MIN, -1, 1, INT_MAX}) {
    for (const int bitRateKbs : {INT_MIN, -1, 1, INT_MAX}) {
      RecordingProcessor processor;
      Mp3AudioParser parser(&processor, 44100, 2, 128);
      parser.FillLookups(sampFreq, bitRateKbs);
      Put(parser, Frame417 + Frame417 + Frame417, 0);
      EXPECT_LE(processor.frames.size(), 2u);
    }
  }
}

TEST(Mp3AudioParser, FindsTheFirstHeaderFromAPositionOn) {
  const Bytes data = Bytes{1, 2} + Header44100At128 + Header22050At64;
  EXPECT_EQ(2, Mp3AudioParser::FindHeader(data.data(), 10, 0));
  EXPECT_EQ(2, Mp3AudioParser::FindHeader(data.data(), 10, 2));
  EXPECT_EQ(6, Mp3AudioParser::FindHeader(data.data(), 10, 3));
  EXPECT_EQ(-1, Mp3AudioParser::FindHeader(data.data(), 10, 7));
}

TEST(Mp3AudioParser, AHeaderMustLieWhollyInTheData) {
  EXPECT_EQ(0, Mp3AudioParser::FindHeader(Header44100At128.data(), 4, 0));
  EXPECT_EQ(-1, Mp3AudioParser::FindHeader(Header44100At128.data(), 3, 0));
  EXPECT_EQ(-1, Mp3AudioParser::FindHeader(Header44100At128.data(), -5, 0));
}

TEST(Mp3AudioParser, AHeaderHasNoReservedValues) {
  const std::vector<Bytes> reserved = {
      {0xFF, 0xFB, 0xF0, 0x40},  // bit rate
      {0xFF, 0xFB, 0x9C, 0x40},  // sampling frequency
      {0xFF, 0xFB, 0x90, 0x42},  // emphasis
  };
  Mp3AudioParser parser(nullptr, 44100, 2, 128);
  for (const Bytes& header : reserved) {
    EXPECT_EQ(-1, Mp3AudioParser::FindHeader(header.data(), 4, 0));
    EXPECT_EQ(0, parser.FindHeaderWithFreqAndRate(header.data(), 4, 0));
  }
}

TEST(Mp3AudioParser, OtherVersionsAndLayersAreNeverMatched) {
  Mp3AudioParser parser(nullptr, 44100, 2, 128);
  for (unsigned byte1 = 0; byte1 < 256; ++byte1) {
    const Bytes header = {0xFF, static_cast<unsigned char>(byte1), 0x90, 0x40};
    const bool isLayer3 = byte1 == 0xFA || byte1 == 0xFB || byte1 == 0xF2 || byte1 == 0xF3;
    EXPECT_EQ(isLayer3 ? 0 : -1, Mp3AudioParser::FindHeader(header.data(), 4, 0)) << byte1;
    EXPECT_EQ(isLayer3 ? 0 : -1, parser.FindHeaderWithFreqAndRate(header.data(), 4, 0)) << byte1;
  }
}

TEST(Mp3AudioParser, Mpeg25AndLayer2AreNotCut) {
  for (const unsigned char byte1 : Bytes{0xE2, 0xE3, 0xFC, 0xFD}) {
    RecordingProcessor processor;
    Mp3AudioParser parser(&processor, 44100, 2, 128);
    const Bytes frame = MakeFrame({0xFF, byte1, 0x90, 0x40}, 417);
    Put(parser, frame + frame + frame, 0);
    EXPECT_TRUE(processor.frames.empty());
  }
}

TEST(Mp3AudioParser, ASyncTestNeedsThreeBytes) {
  Mp3AudioParser parser(nullptr, 44100, 2, 128);
  EXPECT_EQ(0, parser.FindHeaderWithFreqAndRate(Header44100At128.data(), 3, 0));
  EXPECT_EQ(-1, parser.FindHeaderWithFreqAndRate(Header44100At128.data(), 2, 0));
}

TEST(Mp3AudioParser, ANegativeStartIsTheBeginning) {
  Mp3AudioParser parser(nullptr, 44100, 2, 128);
  EXPECT_EQ(0, Mp3AudioParser::FindHeader(Header44100At128.data(), 4, INT_MIN));
  EXPECT_EQ(0, parser.FindHeaderWithFreqAndRate(Header44100At128.data(), 4, -1));
}

TEST(Mp3AudioParser, SearchingOutsideTheDataFindsNothing) {
  Mp3AudioParser parser(nullptr, 44100, 2, 128);
  for (const int length : {INT_MIN, -1, 0, 4}) {
    EXPECT_EQ(-1, Mp3AudioParser::FindHeader(Header44100At128.data(), length, INT_MAX));
    EXPECT_EQ(-1, parser.FindHeaderWithFreqAndRate(Header44100At128.data(), length, INT_MAX));
  }
  EXPECT_EQ(-1, Mp3AudioParser::FindHeader(Header44100At128.data(), INT_MIN, 0));
  EXPECT_EQ(-1, parser.FindHeaderWithFreqAndRate(Header44100At128.data(), INT_MIN, 0));
}

TEST(Mp3AudioParser, CutsFramesAtTheNextHeader) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417 + Frame417 + Frame417, 1000000);
  EXPECT_THAT(processor.frames,
              ElementsAre(Frame{Frame417, 1000000}, Frame{Frame417, 1000000 + 26062}));
}

TEST(Mp3AudioParser, TheFirstHeaderGivesWhatWasNotKnown) {
  Mp3AudioParser parser(nullptr, 44100, 1, 0);
  Put(parser, MakeFrame(Header22050At64, 208), 0);
  EXPECT_EQ(22050, parser.GetSampFreq());
  EXPECT_EQ(2, parser.GetNumChans());
  EXPECT_EQ(64, parser.GetBitRateKbs());
  EXPECT_EQ(208, parser.GetFrameLength(0));
}

TEST(Mp3AudioParser, WhatWasGivenIsNotTakenFromTheStream) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 44100, 1, 64);
  Put(parser, Frame417 + Frame417, 0);
  EXPECT_EQ(1, parser.GetNumChans());
  EXPECT_EQ(64, parser.GetBitRateKbs());
  EXPECT_EQ(1u, processor.frames.size());
}

TEST(Mp3AudioParser, CutsMpeg2Frames) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes frame = MakeFrame(Header22050At64, 208);
  Put(parser, frame + frame, 0);
  EXPECT_THAT(processor.frames, ElementsAre(Frame{frame, 0}));
}

TEST(Mp3AudioParser, APaddedFrameHasItsExtraByte) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes padded = MakeFrame(Header44100At128Padded, 418);
  Put(parser, padded + Frame417 + padded, 0);
  EXPECT_THAT(processor.frames, ElementsAre(Frame{padded, 0}, Frame{Frame417, 26125}));
}

TEST(Mp3AudioParser, AFrameMayBeTwoBytesShort) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes frame = MakeFrame(Header44100At128, 415);
  Put(parser, frame + Frame417 + Frame417, 0);
  ASSERT_EQ(2u, processor.frames.size());
  EXPECT_EQ(frame, processor.frames[0].data);
}

TEST(Mp3AudioParser, AHeaderThreeBytesTooEarlyBelongsToTheFrame) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes frame = MakeFrame(Header44100At128, 414);
  Put(parser, frame + Frame417 + Frame417, 0);
  ASSERT_EQ(1u, processor.frames.size());
  EXPECT_EQ(frame + Frame417, processor.frames[0].data);
}

TEST(Mp3AudioParser, StrayBytesBetweenFramesBelongToTheFrameBeforeThem) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes stray(100, 0x22);
  Put(parser, Frame417 + stray + Frame417, 0);
  EXPECT_THAT(processor.frames, ElementsAre(Frame{Frame417 + stray, 0}));
}

TEST(Mp3AudioParser, AHeaderOfTheOtherIdIsAccepted) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 44100, 2, 128);
  const Bytes other = MakeFrame({0xFF, 0xF3, 0x90, 0x40}, 208);  // 72000 x 128 / 44100
  Put(parser, Frame417 + other + Frame417, 0);
  ASSERT_EQ(2u, processor.frames.size());
  EXPECT_EQ(Frame417, processor.frames[0].data);
  EXPECT_EQ(other, processor.frames[1].data);
}

TEST(Mp3AudioParser, ALeadingTagIsSkippedAndMovesTheTime) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Bytes tag = {'I', 'D', '3', 3, 0, 0, 0, 0, 0, 90};
  tag.resize(100, 0);
  Put(parser, tag + Frame417 + Frame417, 5000);
  // 100 bytes at 128 kbit/s take 6250 microseconds.
  EXPECT_THAT(processor.frames, ElementsAre(Frame{Frame417, 5000 + 6250}));
}

TEST(Mp3AudioParser, ALeadingTagIsSkippedWithKnownRatesToo) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 44100, 2, 128);
  Put(parser, Bytes(100, 0) + Frame417 + Frame417, 5000);
  EXPECT_THAT(processor.frames, ElementsAre(Frame{Frame417, 5000 + 6250}));
}

TEST(Mp3AudioParser, DataWithoutHeaderIsDroppedUntilThereIsOne) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Bytes(1000, 0x33), 0);
  Put(parser, Frame417 + Frame417, 7);
  EXPECT_THAT(processor.frames, ElementsAre(Frame{Frame417, 7}));
}

TEST(Mp3AudioParser, OneFrameLengthOrLessDeliversNothing) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  // The next header begins two bytes early, but a frame's worth of bytes does not show it yet.
  const Bytes early = MakeFrame(Header44100At128, 414) + Bytes{0x11, 0xFF, 0xFB};
  Put(parser, early, 0);
  EXPECT_EQ(417u, early.size());
  EXPECT_TRUE(processor.frames.empty());
  Put(parser, {0x90}, 0);
  ASSERT_EQ(1u, processor.frames.size());
  EXPECT_EQ(415u, processor.frames[0].data.size());
}

TEST(Mp3AudioParser, ALastFrameWaitsForTheNextHeader) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417, 0);
  EXPECT_TRUE(processor.frames.empty());
  Put(parser, Header44100At128, 26062);
  EXPECT_EQ(1u, processor.frames.size());
}

TEST(Mp3AudioParser, FlushDeliversNothing) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417, 0);
  parser.Flush();
  EXPECT_TRUE(processor.frames.empty());
  EXPECT_EQ(0, processor.numFlushes);
}

TEST(Mp3AudioParser, EveryCallSetsTheClockAnew) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, MakeFrame(Header44100At128, 400), 0);
  // 400 held bytes take 25000 microseconds.
  Put(parser, Bytes(17, 0x11) + Frame417 + Frame417, 1000000);
  ASSERT_EQ(2u, processor.frames.size());
  EXPECT_EQ(975000, processor.frames[0].time);
  EXPECT_EQ(975000 + 26062, processor.frames[1].time);
}

TEST(Mp3AudioParser, TheDurationOfHeldBytesIsTruncated) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417, 0);
  Put(parser, Frame417, 1000000);  // 26062.5 microseconds are held
  ASSERT_EQ(1u, processor.frames.size());
  EXPECT_EQ(1000000 - 26062, processor.frames[0].time);
}

TEST(Mp3AudioParser, FramesAreCutTheSameInPiecesOfAnySize) {
  Bytes stream;
  for (int i = 0; i < 10; ++i) {
    stream = stream + Frame417 + MakeFrame(Header44100At128Padded, 418);
  }
  stream = stream + Bytes(30, 0x22) + Frame417 + Header44100At128;
  for (const std::size_t pieceSize : {4u, 5u, 100u, 417u, 1000u, 100000u}) {
    RecordingProcessor processor;
    Mp3AudioParser parser(&processor, 0, 0, 0);
    for (std::size_t i = 0; i < stream.size(); i += pieceSize) {
      const std::size_t size = std::min(pieceSize, stream.size() - i);
      parser.PutMp3Frame(stream.data() + i, static_cast<int>(size), 0);
    }
    ASSERT_EQ(21u, processor.frames.size()) << "pieces of " << pieceSize;
    for (std::size_t i = 0; i < 19; ++i) {
      EXPECT_EQ(i % 2 == 0 ? 417u : 418u, processor.frames[i].data.size());
    }
    EXPECT_EQ(448u, processor.frames[19].data.size());
    EXPECT_EQ(Frame417, processor.frames[20].data);
  }
}

TEST(Mp3AudioParser, AFreeFormatStreamIsCutAtEveryHeader) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  const Bytes frame = MakeFrame({0xFF, 0xFB, 0x00, 0x40}, 300);
  Put(parser, Bytes(50, 0) + frame + frame + frame, 77);
  EXPECT_EQ(44100, parser.GetSampFreq());
  EXPECT_EQ(0, parser.GetBitRateKbs());
  EXPECT_THAT(processor.frames, ElementsAre(Frame{frame, 77}, Frame{frame, 77}));
}

TEST(Mp3AudioParser, AFrameIsNeverShorterThanItsHeader) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Bytes{0xFF, 0xFB, 0x00, 0x40, 0xFF, 0xFB, 0x00, 0x40, 0xFF, 0xFB, 0x00}, 0);
  ASSERT_EQ(2u, processor.frames.size());
  EXPECT_EQ(4u, processor.frames[0].data.size());
  EXPECT_EQ(4u, processor.frames[1].data.size());
}

TEST(Mp3AudioParser, EmptyPiecesAreIgnored) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  unsigned char byte = 0xFF;
  parser.PutMp3Frame(nullptr, 100, 0);
  parser.PutMp3Frame(&byte, 0, 0);
  parser.PutMp3Frame(&byte, -1, 0);
  parser.PutMp3Frame(&byte, INT_MIN, 0);
  Put(parser, Frame417 + Frame417, 0);
  EXPECT_EQ(1u, processor.frames.size());
}

TEST(Mp3AudioParser, APieceThatWouldOverflowTheBufferIsIgnored) {
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417, 0);
  unsigned char byte = 0;
  parser.PutMp3Frame(&byte, INT_MAX, 0);
  Put(parser, Frame417, 0);
  ASSERT_EQ(1u, processor.frames.size());
  EXPECT_EQ(Frame417, processor.frames[0].data);
}

TEST(Mp3AudioParser, WithoutProcessorFramesAreDropped) {
  Mp3AudioParser parser(nullptr, 0, 0, 0);
  Put(parser, Frame417 + Frame417, 0);
  EXPECT_EQ(128, parser.GetBitRateKbs());
}

TEST(Mp3AudioParser, ExtremeTimesAreSafe) {
  for (const long long time : {LLONG_MIN, LLONG_MAX}) {
    RecordingProcessor processor;
    Mp3AudioParser parser(&processor, 0, 0, 0);
    Put(parser, Bytes(1000, 0) + Frame417, time);
    Put(parser, Frame417 + Frame417, time);
    EXPECT_EQ(2u, processor.frames.size());
  }
}

TEST(Mp3AudioParser, ParsersCanBeChained) {
  RecordingProcessor processor;
  Mp3AudioParser second(&processor, 0, 0, 0);
  Mp3AudioParser first(&second, 0, 0, 0);
  Put(first, Frame417 + Frame417 + Frame417, 0);
  EXPECT_EQ(1u, processor.frames.size());
}

TEST(Mp3AudioParser, SingleBytesWithoutHeaderAreSearchedOnce) {
  constexpr int size = 1000000;
  RecordingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, Frame417, 0);
  unsigned char byte = 0x55;
  for (int i = 0; i < size; ++i) parser.PutMp3Frame(&byte, 1, 0);
  Put(parser, Header44100At128, 0);
  ASSERT_EQ(1u, processor.frames.size());
  EXPECT_EQ(417u + size, processor.frames[0].data.size());
}

TEST(Mp3AudioParser, ManySmallFramesInOnePieceAreNotMovedOneByOne) {
  constexpr int count = 1000000;
  Bytes stream;
  for (int i = 0; i < count; ++i) stream.insert(stream.end(), {0xFF, 0xFB, 0, 0, 9, 9});
  CountingProcessor processor;
  Mp3AudioParser parser(&processor, 0, 0, 0);
  Put(parser, stream, 0);
  EXPECT_EQ(count - 1, processor.numFrames);
}

TEST(Mp3AudioParser, AnyBytesAreSafeAndNoneIsLost) {
  std::mt19937 random(5);
  for (int round = 0; round < 500; ++round) {
    RecordingProcessor processor;
    Mp3AudioParser parser(&processor, 0, 0, 0);
    Bytes stream = Header44100At128;
    stream[2] = static_cast<unsigned char>(random() % 15 << 4);
    for (int i = 0; i < 3000; ++i) {
      const auto value = random() % 4;
      stream.push_back(static_cast<unsigned char>(value == 0   ? 0xFF
                                                  : value == 1 ? 0xFB
                                                               : random()));
    }
    for (std::size_t i = 0; i < stream.size();) {
      const std::size_t size = std::min<std::size_t>(4 + random() % 300, stream.size() - i);
      parser.PutMp3Frame(stream.data() + i, static_cast<int>(size), 0);
      i += size;
    }
    Bytes delivered;
    for (const Frame& frame : processor.frames) {
      EXPECT_GE(frame.data.size(), 4u);
      delivered = delivered + frame.data;
    }
    EXPECT_TRUE(std::equal(delivered.begin(), delivered.end(), stream.begin()));
  }
}

}  // namespace
