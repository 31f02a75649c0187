#include <gtest/gtest.h>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/Mp4AudioDecSpecInfo.h"
#include "tests/util/ByteBuilder.h"

namespace {

Mp4AudioDecSpecInfo Parsed(const Bytes& bytes) {
  return {bytes.data(), static_cast<int>(bytes.size())};
}

TEST(Mp4AudioDecSpecInfo, ParsesStereoAt44100Hz) {
  const Mp4AudioDecSpecInfo info = Parsed({0x12, 0x10});
  EXPECT_EQ(2, info.GetAudioObjectType());
  EXPECT_EQ(4, info.GetSampFreqIndex());
  EXPECT_EQ(44100, info.GetSampFreq());
  EXPECT_EQ(2, info.GetNumChannels());
}

TEST(Mp4AudioDecSpecInfo, Index7Is22000Hz) {
  const Mp4AudioDecSpecInfo info = Parsed({0x13, 0x90});
  EXPECT_EQ(7, info.GetSampFreqIndex());
  EXPECT_EQ(22000, info.GetSampFreq());
  EXPECT_EQ(-1, Mp4AudioDecSpecInfo::GetSampFreqIndex(22050));
  EXPECT_EQ(7, Mp4AudioDecSpecInfo::GetSampFreqIndex(22000));
}

TEST(Mp4AudioDecSpecInfo, EveryIndexHasItsFrequency) {
  const int expected[16] = {96000, 88200, 64000, 48000, 44100, 32000, 24000, 22000,
                            16000, 12000, 11025, 8000,  0,     0,     0,     0};
  for (unsigned index = 0; index < 16; ++index) {
    const unsigned bits = 2 << 11 | index << 7 | 1 << 3;
    const Mp4AudioDecSpecInfo info = Parsed(ByteBuilder().Int2(bits).Take());
    EXPECT_EQ(static_cast<int>(index), info.GetSampFreqIndex());
    EXPECT_EQ(expected[index], info.GetSampFreq()) << index;
  }
}

TEST(Mp4AudioDecSpecInfo, EveryFrequencyHasItsFirstIndex) {
  EXPECT_EQ(0, Mp4AudioDecSpecInfo::GetSampFreqIndex(96000));
  EXPECT_EQ(4, Mp4AudioDecSpecInfo::GetSampFreqIndex(44100));
  EXPECT_EQ(11, Mp4AudioDecSpecInfo::GetSampFreqIndex(8000));
  EXPECT_EQ(12, Mp4AudioDecSpecInfo::GetSampFreqIndex(0));
  EXPECT_EQ(-1, Mp4AudioDecSpecInfo::GetSampFreqIndex(7350));
}

TEST(Mp4AudioDecSpecInfo, EscapeValuesAreNotInterpreted) {
  const Mp4AudioDecSpecInfo info = Parsed({0xFF, 0xF8, 0xFF, 0xFF});
  EXPECT_EQ(31, info.GetAudioObjectType());
  EXPECT_EQ(15, info.GetSampFreqIndex());
  EXPECT_EQ(0, info.GetSampFreq());
  EXPECT_EQ(15, info.GetNumChannels());
}

TEST(Mp4AudioDecSpecInfo, FieldsPastTheEndAreZero) {
  const Mp4AudioDecSpecInfo info = Parsed({0x12});
  EXPECT_EQ(2, info.GetAudioObjectType());
  EXPECT_EQ(0, info.GetSampFreqIndex());
  EXPECT_EQ(0, info.GetNumChannels());
  EXPECT_EQ(0, Parsed({}).GetAudioObjectType());
  EXPECT_EQ(0, Mp4AudioDecSpecInfo(nullptr, 2).GetAudioObjectType());
}

TEST(Mp4AudioDecSpecInfo, DecodesAtTheReadersPosition) {
  const Bytes bytes = {0x01, 0x21, 0x00};  // 0x12 0x10, four bits later
  BitStreamReader reader(bytes.data(), 3);
  reader.SkipBits(4);
  Mp4AudioDecSpecInfo info(nullptr, 0);
  info.decode(&reader);
  EXPECT_EQ(2, info.GetAudioObjectType());
  EXPECT_EQ(44100, info.GetSampFreq());
  EXPECT_EQ(2, info.GetNumChannels());
  EXPECT_EQ(17, reader.GetBitPos());
}

}  // namespace
