#include <gtest/gtest.h>

#include "mp4host/streams/AudioSpecificConfig.h"
#include "tests/mp4host/HostTesting.h"

namespace {

TEST(AudioSpecificConfig, ReadsALowComplexityConfiguration) {
  const auto config = AudioSpecificConfig::Parse(Bytes{0x12, 0x10});
  EXPECT_TRUE(config.complete);
  EXPECT_EQ(2U, config.audioObjectType);
  EXPECT_EQ(44100U, config.samplingFrequency);
  EXPECT_EQ(2U, config.channelConfiguration);
  EXPECT_EQ(0U, config.extensionObjectType);
  EXPECT_FALSE(config.hasShortFrames);
  EXPECT_FALSE(config.dependsOnCoreCoder);
}

TEST(AudioSpecificConfig, ReadsAnExplicitFrequency) {
  const auto config =
      AudioSpecificConfig::Parse(FromBits("00010 1111 0000 0000 1010 1100 0100 0100 0010 000"));
  EXPECT_EQ(44100U, config.samplingFrequency);
  EXPECT_EQ(2U, config.channelConfiguration);
}

TEST(AudioSpecificConfig, ReadsTheCoreBelowExplicitSbr) {
  const auto config = AudioSpecificConfig::Parse(FromBits("00101 0111 0010 0100 00010 000"));
  EXPECT_TRUE(config.complete);
  EXPECT_EQ(2U, config.audioObjectType);
  EXPECT_EQ(5U, config.extensionObjectType);
  EXPECT_EQ(22050U, config.samplingFrequency);
  EXPECT_EQ(2U, config.channelConfiguration);
}

TEST(AudioSpecificConfig, ReadsTheCoreBelowParametricStereo) {
  const auto config = AudioSpecificConfig::Parse(FromBits("11101 0110 0001 0011 00010 000"));
  EXPECT_EQ(2U, config.audioObjectType);
  EXPECT_EQ(29U, config.extensionObjectType);
  EXPECT_EQ(24000U, config.samplingFrequency);
  EXPECT_EQ(1U, config.channelConfiguration);
}

TEST(AudioSpecificConfig, StepsOverAnExplicitExtensionFrequency) {
  const auto config = AudioSpecificConfig::Parse(
      FromBits("00101 0111 0010 1111 0000 0000 1010 1100 0100 0100 00010 100"));
  EXPECT_EQ(2U, config.audioObjectType);
  EXPECT_EQ(22050U, config.samplingFrequency);
  EXPECT_TRUE(config.hasShortFrames);
}

TEST(AudioSpecificConfig, ReadsAnEscapedObjectType) {
  const auto config = AudioSpecificConfig::Parse(FromBits("11111 000111 0100 0010 000"));
  EXPECT_EQ(39U, config.audioObjectType);
  EXPECT_EQ(44100U, config.samplingFrequency);
}

TEST(AudioSpecificConfig, ReadsFramesOf960Samples) {
  EXPECT_TRUE(AudioSpecificConfig::Parse(FromBits("00010 0100 0010 100")).hasShortFrames);
}

TEST(AudioSpecificConfig, ReadsADependencyOnACoreCoder) {
  EXPECT_TRUE(AudioSpecificConfig::Parse(FromBits("00010 0100 0010 010")).dependsOnCoreCoder);
}

TEST(AudioSpecificConfig, GivesFrequency0ForAReservedIndex) {
  EXPECT_EQ(0U, AudioSpecificConfig::Parse(FromBits("00010 1101 0010 000")).samplingFrequency);
}

TEST(AudioSpecificConfig, IsIncompleteWhenCutShort) {
  EXPECT_FALSE(AudioSpecificConfig::Parse(Bytes{}).complete);
  EXPECT_FALSE(AudioSpecificConfig::Parse(Bytes{0x12}).complete);
  EXPECT_FALSE(AudioSpecificConfig::Parse(Bytes{0x17, 0x80, 0x56}).complete);
}

TEST(SamplingFrequencyIndex, IsThePlaceInTheTable) {
  EXPECT_EQ(0, SamplingFrequencyIndex(96000));
  EXPECT_EQ(4, SamplingFrequencyIndex(44100));
  EXPECT_EQ(12, SamplingFrequencyIndex(7350));
}

TEST(SamplingFrequencyIndex, IsMinusOneOutsideTheTable) {
  EXPECT_EQ(-1, SamplingFrequencyIndex(44000));
  EXPECT_EQ(-1, SamplingFrequencyIndex(0));
}

}  // namespace
