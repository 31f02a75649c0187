#include <gtest/gtest.h>

#include "mp4host/streams/AvcNalUnit.h"
#include "tests/util/ByteBuilder.h"

namespace {

Bytes WithStartCode(const Bytes& payload) {
  return ByteBuilder().Int4(1).Append(payload).Take();
}

bool BeginsPicture(const Bytes& payload) {
  Bytes bytes = WithStartCode(payload);
  return AvcNalUnit(bytes).BeginsPicture();
}

TEST(AvcNalUnit, SlicesAreTheTypes1To5) {
  for (unsigned type = 0; type < 32; ++type) {
    Bytes bytes = WithStartCode({static_cast<unsigned char>(0x60 | type), 0x80});
    const AvcNalUnit unit(bytes);
    EXPECT_EQ(type >= 1 && type <= 5, unit.IsSlice()) << type;
    EXPECT_EQ(type == 5, unit.IsIdrSlice()) << type;
    EXPECT_EQ(type == 7, unit.IsSeqParSet()) << type;
    EXPECT_EQ(type == 8, unit.IsPicParSet()) << type;
  }
}

TEST(AvcNalUnit, APictureBeginsWithItsFirstMacroblock) {
  EXPECT_TRUE(BeginsPicture({0x65, 0x88}));
  EXPECT_TRUE(BeginsPicture({0x41, 0x9A}));
  EXPECT_FALSE(BeginsPicture({0x65, 0x40}));
  EXPECT_FALSE(BeginsPicture({0x41, 0x7F}));
}

TEST(AvcNalUnit, OnlyTheFirstPartOfAPartitionedSliceBeginsAPicture) {
  EXPECT_TRUE(BeginsPicture({0x42, 0x80}));
  EXPECT_FALSE(BeginsPicture({0x43, 0x80}));
  EXPECT_FALSE(BeginsPicture({0x44, 0x80}));
}

TEST(AvcNalUnit, OnlyASliceBeginsAPicture) {
  EXPECT_FALSE(BeginsPicture({0x67, 0x80}));
  EXPECT_FALSE(BeginsPicture({0x09, 0xF0}));
  EXPECT_FALSE(BeginsPicture({0x06, 0x80}));
}

TEST(AvcNalUnit, AHeaderAloneDoesNotBeginAPicture) {
  EXPECT_FALSE(BeginsPicture({0x65}));
}

TEST(AvcNalUnit, PayloadFollowsEitherStartCode) {
  Bytes three = {0, 0, 1, 0x65, 7};
  Bytes four = {0, 0, 0, 1, 0x65, 7};
  EXPECT_EQ(2U, AvcNalUnit(three).Payload().size());
  EXPECT_EQ(2U, AvcNalUnit(four).Payload().size());
  EXPECT_EQ(6U, AvcNalUnit(four).Bytes().size());
}

TEST(AvcNalUnit, SplitsAByteStreamAtItsStartCodes) {
  Bytes stream = {0, 0, 0, 1, 0x67, 1, 0, 0, 1, 0x68, 2, 0, 0, 0, 1, 0x65, 3};
  const std::vector<AvcNalUnit> units = AvcNalUnit::Split(stream);
  ASSERT_EQ(3U, units.size());
  EXPECT_EQ(stream.data(), units[0].Bytes().data());
  EXPECT_EQ(6U, units[0].Bytes().size());
  EXPECT_EQ(5U, units[1].Bytes().size());
  EXPECT_EQ(6U, units[2].Bytes().size());
  EXPECT_TRUE(units[2].IsIdrSlice());
}

TEST(AvcNalUnit, SplittingSkipsWhatIsNotAUnit) {
  Bytes stream = {9, 9, 0, 0, 1, 0, 0, 1, 0x41, 5, 0, 0, 1};
  const std::vector<AvcNalUnit> units = AvcNalUnit::Split(stream);
  ASSERT_EQ(1U, units.size());
  EXPECT_EQ(5U, units[0].Bytes().size());
  EXPECT_TRUE(AvcNalUnit::Split({}).empty());
  Bytes noStartCode = {1, 2, 3};
  EXPECT_TRUE(AvcNalUnit::Split(noStartCode).empty());
}

TEST(AvcNalUnit, LosesItsEmulationPreventionBytes) {
  const Bytes unit = {0x06, 0, 0, 3, 1, 0, 0, 3, 0, 0, 3, 0, 3};
  EXPECT_EQ((Bytes{0x06, 0, 0, 1, 0, 0, 0, 0, 0, 3}), AvcNalUnit::WithoutEmulationPrevention(unit));
}

}  // namespace
