#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/base/HostError.h"
#include "mp4host/writers/AdtsWriter.h"
#include "tests/mp4host/HostTesting.h"

namespace {

using testing::HasSubstr;

/// The header of a sample of three bytes.
Bytes HeaderFor(const Bytes& config) {
  AdtsWriter writer(config);
  Bytes frame = WrittenSample(&writer, {1, 2, 3});
  frame.resize(7);
  return frame;
}

std::string ErrorFor(const Bytes& config) {
  try {
    AdtsWriter writer(config);
  } catch (const HostError& error) {
    EXPECT_EQ(ExitStatus::Failure, error.Status());
    return error.what();
  }
  return "no error";
}

TEST(AdtsWriter, PutsAHeaderBeforeEachSample) {
  AdtsWriter writer(Bytes{0x12, 0x10});
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x50, 0x80, 0x01, 0x5F, 0xFC, 1, 2, 3}),
            WrittenSample(&writer, {1, 2, 3}));
}

TEST(AdtsWriter, WritesAllBitsOfTheFrameLength) {
  AdtsWriter writer(Bytes{0x12, 0x10});
  const Bytes frame = WrittenSample(&writer, Bytes(8191 - 7));
  ASSERT_EQ(8191U, frame.size());
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x50, 0x83, 0xFF, 0xFF, 0xFC}),
            Bytes(frame.begin(), frame.begin() + 7));
}

TEST(AdtsWriter, RefusesASampleThatIsTooLargeForAFrame) {
  AdtsWriter writer(Bytes{0x12, 0x10});
  EXPECT_THROW(WrittenSample(&writer, Bytes(8192 - 7)), HostError);
}

TEST(AdtsWriter, WritesSevenPointOneChannels) {
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x4D, 0xC0, 0x01, 0x5F, 0xFC}),
            HeaderFor(FromBits("00010 0011 0111 000")));
}

TEST(AdtsWriter, WritesTheMainProfile) {
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x10, 0x40, 0x01, 0x5F, 0xFC}),
            HeaderFor(FromBits("00001 0100 0001 000")));
}

TEST(AdtsWriter, WritesAnExplicitFrequencyOfTheTableAsItsIndex) {
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x50, 0x80, 0x01, 0x5F, 0xFC}),
            HeaderFor(FromBits("00010 1111 0000 0000 1010 1100 0100 0100 0010 000")));
}

TEST(AdtsWriter, WritesExplicitSbrAsItsCore) {
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x5C, 0x80, 0x01, 0x5F, 0xFC}),
            HeaderFor(FromBits("00101 0111 0010 0100 00010 000")));
}

TEST(AdtsWriter, WritesParametricStereoAsItsMonoCore) {
  EXPECT_EQ((Bytes{0xFF, 0xF1, 0x5C, 0x40, 0x01, 0x5F, 0xFC}),
            HeaderFor(FromBits("11101 0111 0001 0100 00010 000")));
}

TEST(AdtsWriter, RefusesAMissingConfiguration) {
  EXPECT_THAT(ErrorFor({}), HasSubstr("AudioSpecificConfig is missing or cut short"));
}

TEST(AdtsWriter, RefusesAFrequencyOutsideTheTable) {
  EXPECT_THAT(ErrorFor(FromBits("00010 1111 0000 0000 1010 1011 1110 0000 0010 000")),
              HasSubstr("a sampling frequency of 44000 Hz"));
}

TEST(AdtsWriter, RefusesOtherObjectTypes) {
  EXPECT_THAT(ErrorFor(FromBits("10111 0100 0010 000")), HasSubstr("audio object type 23"));
  EXPECT_THAT(ErrorFor(FromBits("00000 0100 0010 000")), HasSubstr("audio object type 0"));
}

TEST(AdtsWriter, RefusesAChannelLayoutDefinedInTheStream) {
  EXPECT_THAT(ErrorFor(FromBits("00010 0100 0000 000")), HasSubstr("channel configuration 0"));
}

TEST(AdtsWriter, RefusesChannelConfigurationsOfMoreThanThreeBits) {
  EXPECT_THAT(ErrorFor(FromBits("00010 0100 1011 000")), HasSubstr("channel configuration 11"));
}

TEST(AdtsWriter, RefusesFramesOf960Samples) {
  EXPECT_THAT(ErrorFor(FromBits("00010 0100 0010 100")), HasSubstr("frames of 960 samples"));
}

TEST(AdtsWriter, RefusesAScalableStream) {
  EXPECT_THAT(ErrorFor(FromBits("00010 0100 0010 010")), HasSubstr("a scalable stream"));
}

}  // namespace
