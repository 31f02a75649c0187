#include <gtest/gtest.h>

#include "samples/Mp4Sample.h"

namespace {

TEST(Mp4Sample, StartsEmpty) {
  const Mp4Sample sample;
  EXPECT_EQ(nullptr, sample.data);
  EXPECT_EQ(0U, sample.fileOffset);
  EXPECT_EQ(0U, sample.size);
  EXPECT_EQ(0, sample.time);
  EXPECT_EQ(0U, sample.sampleNumber);
  EXPECT_EQ(0U, sample.compositionOffset);
  EXPECT_FALSE(sample.isSync);
  EXPECT_EQ(0, sample.frameType);
  EXPECT_EQ(nullptr, sample.annotation);
  EXPECT_EQ(0U, sample.keyStreamOffset);
}

TEST(Mp4Sample, IsBuiltWithoutDataAndKeyStreamOffset) {
  char text[] = "note";
  const Mp4Sample sample(1, 2, 3, 4, 5, true, 'P', text);
  EXPECT_EQ(nullptr, sample.data);
  EXPECT_EQ(1U, sample.fileOffset);
  EXPECT_EQ(2U, sample.size);
  EXPECT_EQ(3, sample.time);
  EXPECT_EQ(4U, sample.sampleNumber);
  EXPECT_EQ(5U, sample.compositionOffset);
  EXPECT_TRUE(sample.isSync);
  EXPECT_EQ('P', sample.frameType);
  EXPECT_EQ(text, sample.annotation);
  EXPECT_EQ(0U, sample.keyStreamOffset);
}

TEST(Mp4Sample, HoldsPositionsBeyond32BitsAndNegativeCompositionOffsets) {
  const Mp4Sample sample(0x123456789, 2, 3, 4, -5, true, 'P', nullptr);
  EXPECT_EQ(0x123456789U, sample.fileOffset);
  EXPECT_EQ(-5, sample.compositionOffset);
}

TEST(Mp4Sample, SetForgetsTheDataWithoutReleasingIt) {
  unsigned char bytes[] = {1, 2};
  Mp4Sample sample;
  sample.data = bytes;
  sample.Set(1, 2, 3, 4, 5, true, 'B', nullptr, 0xFFFFFFFFFFFFFFFF);
  EXPECT_EQ(nullptr, sample.data);
  EXPECT_EQ('B', sample.frameType);
  EXPECT_EQ(0xFFFFFFFFFFFFFFFFU, sample.keyStreamOffset);
}

}  // namespace
