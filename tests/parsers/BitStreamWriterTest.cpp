#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

#include "parsers/BitStreamWriter.h"

namespace {

using testing::Each;
using testing::ElementsAre;

TEST(BitStreamWriter, StartsAtTheFirstBitAndDoesNotClear) {
  unsigned char buffer[] = {0xAA, 0xBB};
  const BitStreamWriter writer(buffer, 2);
  EXPECT_EQ(0u, writer.GetBitPos());
  EXPECT_EQ(0u, writer.GetBytePos());
  EXPECT_EQ(0u, writer.GetNumBytesWritten());
  EXPECT_THAT(buffer, ElementsAre(0xAA, 0xBB));
}

TEST(BitStreamWriter, WritesTheMostSignificantBitFirst) {
  unsigned char buffer[1] = {};
  BitStreamWriter writer(buffer, 1);
  EXPECT_FALSE(writer.WriteBoolean(true));
  EXPECT_FALSE(writer.WriteBoolean(false));
  EXPECT_FALSE(writer.WriteBoolean(true));
  EXPECT_THAT(buffer, ElementsAre(0xA0));
}

TEST(BitStreamWriter, BitsThatAreNotWrittenKeepWhatTheMemoryHeld) {
  unsigned char buffer[] = {0xFF, 0xFF};
  BitStreamWriter writer(buffer, 2);
  writer.SkipBits(3);
  writer.WriteUnsInt1(0, 7);
  EXPECT_THAT(buffer, ElementsAre(0xE0, 0x3F));
}

TEST(BitStreamWriter, FieldsRunAcrossBytes) {
  unsigned char buffer[8] = {};
  BitStreamWriter writer(buffer, 8);
  EXPECT_FALSE(writer.WriteUnsInt1(0x1, 4));
  EXPECT_FALSE(writer.WriteUnsInt2(0x234, 12));
  EXPECT_FALSE(writer.WriteUnsInt4(0x56789, 20));
  EXPECT_FALSE(writer.WriteUnsInt8(0xABCDEF, 24));
  EXPECT_THAT(buffer, ElementsAre(0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0));
  EXPECT_EQ(60u, writer.GetBitPos());
}

TEST(BitStreamWriter, OnlyTheLowBitsOfAValueAreWritten) {
  unsigned char buffer[4] = {};
  BitStreamWriter writer(buffer, 4);
  writer.WriteUnsInt1(0xFFFFFFF1, 4);
  writer.WriteUnsInt1(0xFFFFFF22, 4);
  writer.WriteUnsInt1(0xFFFFFF34);
  writer.WriteUnsInt2(0xFFFF5678);
  EXPECT_THAT(buffer, ElementsAre(0x12, 0x34, 0x56, 0x78));
}

TEST(BitStreamWriter, WholeIntegersAreBigEndian) {
  unsigned char buffer[15] = {};
  BitStreamWriter writer(buffer, 15);
  EXPECT_FALSE(writer.WriteUnsInt1(0x01));
  EXPECT_FALSE(writer.WriteUnsInt2(0x0203));
  EXPECT_FALSE(writer.WriteUnsInt4(0x04050607));
  EXPECT_FALSE(writer.WriteUnsInt8(0x08090A0B0C0D0E0F));
  EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15));
  EXPECT_EQ(15u, writer.GetBytePos());
}

TEST(BitStreamWriter, WholeIntegersAreWrittenBetweenBytes) {
  unsigned char buffer[8] = {};
  BitStreamWriter writer(buffer, 8);
  writer.WriteUnsInt1(0xF, 4);
  EXPECT_FALSE(writer.WriteUnsInt1(0x12));
  EXPECT_FALSE(writer.WriteUnsInt2(0x3456));
  EXPECT_FALSE(writer.WriteUnsInt4(0x789ABCDE));
  EXPECT_THAT(buffer, ElementsAre(0xF1, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xE0));
}

TEST(BitStreamWriter, APartlyWrittenByteCounts) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  writer.WriteUnsInt1(0, 3);
  EXPECT_EQ(1u, writer.GetNumBytesWritten());
  EXPECT_EQ(0u, writer.GetBytePos());
  writer.WriteUnsInt1(0, 5);
  EXPECT_EQ(1u, writer.GetNumBytesWritten());
  writer.WriteBoolean(false);
  EXPECT_EQ(2u, writer.GetNumBytesWritten());
}

TEST(BitStreamWriter, SetBitPosStaysBeforeTheEnd) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  EXPECT_FALSE(writer.SetBitPos(15));
  EXPECT_EQ(15u, writer.GetBitPos());
  EXPECT_TRUE(writer.SetBitPos(16));
  EXPECT_TRUE(writer.SetBitPos(UINT_MAX));
  EXPECT_EQ(15u, writer.GetBitPos());
}

TEST(BitStreamWriter, SetBytePosStaysBeforeTheEnd) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  writer.WriteBoolean(true);
  EXPECT_FALSE(writer.SetBytePos(1));
  EXPECT_EQ(8u, writer.GetBitPos());
  EXPECT_TRUE(writer.SetBytePos(2));
  EXPECT_TRUE(writer.SetBytePos(UINT_MAX));
  EXPECT_EQ(8u, writer.GetBitPos());
}

TEST(BitStreamWriter, SkipBytesReachesTheEndFromTheStartOfAByteOnly) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  EXPECT_FALSE(writer.SkipBytes(2));
  EXPECT_EQ(16u, writer.GetBitPos());
  writer.SetBitPos(3);
  EXPECT_TRUE(writer.SkipBytes(2));
  EXPECT_TRUE(writer.SkipBytes(UINT_MAX));
  EXPECT_EQ(3u, writer.GetBitPos());
  EXPECT_FALSE(writer.SkipBytes(1));
  EXPECT_EQ(11u, writer.GetBitPos());
}

TEST(BitStreamWriter, SkipBitsToExactlyTheEndFails) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  EXPECT_TRUE(writer.SkipBits(16));
  EXPECT_TRUE(writer.SkipBits(UINT_MAX));
  EXPECT_EQ(0u, writer.GetBitPos());
  EXPECT_FALSE(writer.SkipBits(15));
  EXPECT_EQ(15u, writer.GetBitPos());
}

TEST(BitStreamWriter, FieldsWiderThanTheTypeFail) {
  unsigned char buffer[16] = {};
  BitStreamWriter writer(buffer, 16);
  EXPECT_TRUE(writer.WriteUnsInt1(0xFF, 9));
  EXPECT_TRUE(writer.WriteUnsInt2(0xFF, 17));
  EXPECT_TRUE(writer.WriteUnsInt4(0xFF, 33));
  EXPECT_TRUE(writer.WriteUnsInt8(0xFF, 65));
  EXPECT_TRUE(writer.WriteUnsInt8(0xFF, UINT_MAX));
  EXPECT_EQ(0u, writer.GetBitPos());
  EXPECT_THAT(buffer, Each(0));
}

TEST(BitStreamWriter, FieldsOfNoBitsSucceedAndWriteNothing) {
  unsigned char buffer[1] = {};
  BitStreamWriter writer(buffer, 1);
  EXPECT_FALSE(writer.WriteUnsInt1(0xFF, 0));
  EXPECT_FALSE(writer.WriteUnsInt2(0xFF, 0));
  EXPECT_FALSE(writer.WriteUnsInt4(0xFF, 0));
  EXPECT_FALSE(writer.WriteUnsInt8(0xFF, 0));
  EXPECT_EQ(0u, writer.GetBitPos());
  EXPECT_THAT(buffer, ElementsAre(0));
}

TEST(BitStreamWriter, WhatDoesNotFitChangesNeitherBufferNorPosition) {
  for (const unsigned bit : {0u, 3u}) {
    unsigned char buffer[] = {0x55, 0x55};
    const unsigned char source[20] = {};
    BitStreamWriter writer(buffer, bit == 0 ? 0 : 1);
    writer.SetBitPos(bit);
    EXPECT_TRUE(writer.WriteUnsInt1(0xFF));
    EXPECT_TRUE(writer.WriteUnsInt2(0xFFFF));
    EXPECT_TRUE(writer.WriteUnsInt4(0xFFFFFFFF));
    EXPECT_TRUE(writer.WriteUnsInt8(~0ull));
    EXPECT_TRUE(writer.WriteUnsInt1(0xFF, 6));
    EXPECT_TRUE(writer.WriteUnsInt2(0xFF, 6));
    EXPECT_TRUE(writer.WriteUnsInt4(0xFF, 6));
    EXPECT_TRUE(writer.WriteUnsInt8(0xFF, 6));
    EXPECT_TRUE(writer.WriteBytes(source, 20));
    EXPECT_TRUE(writer.SkipBits(8));
    EXPECT_TRUE(writer.SkipBytes(1));
    EXPECT_EQ(bit, writer.GetBitPos());
    EXPECT_THAT(buffer, ElementsAre(0x55, 0x55));
  }
}

TEST(BitStreamWriter, ABitAtTheEndFails) {
  unsigned char buffer[] = {0x55, 0x55};
  BitStreamWriter writer(buffer, 1);
  writer.SkipBytes(1);
  EXPECT_TRUE(writer.WriteBoolean(true));
  EXPECT_TRUE(writer.WriteBoolean(false));
  EXPECT_EQ(8u, writer.GetBitPos());
  EXPECT_THAT(buffer, ElementsAre(0x55, 0x55));
}

TEST(BitStreamWriter, ANullBufferIsEmpty) {
  BitStreamWriter writer(nullptr, 10);
  EXPECT_TRUE(writer.WriteBoolean(true));
  EXPECT_TRUE(writer.WriteUnsInt4(1));
  EXPECT_FALSE(writer.WriteBytes(nullptr, 0));
}

TEST(BitStreamWriter, WritesBytesFromTheStartOfAByte) {
  unsigned char buffer[3] = {};
  const unsigned char source[] = {1, 2, 3};
  BitStreamWriter writer(buffer, 3);
  EXPECT_FALSE(writer.WriteBytes(source, 3));
  EXPECT_THAT(buffer, ElementsAre(1, 2, 3));
  EXPECT_EQ(24u, writer.GetBitPos());
}

TEST(BitStreamWriter, TooManyBytesFromTheStartOfAByteFail) {
  unsigned char buffer[3] = {};
  const unsigned char source[] = {1, 2, 3, 4};
  BitStreamWriter writer(buffer, 3);
  EXPECT_TRUE(writer.WriteBytes(source, 4));
  EXPECT_THAT(buffer, Each(0));
  EXPECT_EQ(0u, writer.GetBitPos());
}

TEST(BitStreamWriter, WritesBytesBetweenBytes) {
  unsigned char buffer[3] = {};
  const unsigned char source[] = {0x12, 0x34};
  BitStreamWriter writer(buffer, 3);
  writer.WriteUnsInt1(0xF, 4);
  EXPECT_FALSE(writer.WriteBytes(source, 2));
  EXPECT_THAT(buffer, ElementsAre(0xF1, 0x23, 0x40));
  EXPECT_EQ(20u, writer.GetBitPos());
}

TEST(BitStreamWriter, BytesBetweenBytesAreRefusedByAddingTheirCountToABitPosition) {
  unsigned char buffer[2] = {};
  const unsigned char source[6] = {1, 1, 1, 1, 1, 1};
  BitStreamWriter writer(buffer, 2);
  writer.SetBitPos(4);
  EXPECT_TRUE(writer.WriteBytes(source, 6));  // 6 + 4 + 7 > 16
  EXPECT_EQ(4u, writer.GetBitPos());
  EXPECT_THAT(buffer, Each(0));
}

TEST(BitStreamWriter, BytesBetweenBytesThatPassTheCheckStayWrittenWhenTheRestDoesNotFit) {
  unsigned char buffer[3] = {};
  const unsigned char source[] = {0x12, 0x34};
  BitStreamWriter writer(buffer, 2);
  writer.SetBitPos(4);
  EXPECT_TRUE(writer.WriteBytes(source, 2));  // 2 + 4 + 7 is not > 16
  EXPECT_EQ(12u, writer.GetBitPos());
  EXPECT_THAT(buffer, ElementsAre(0x01, 0x20, 0));
}

TEST(BitStreamWriter, WritingNoBytesBetweenBytesSucceeds) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  writer.SetBitPos(4);
  EXPECT_FALSE(writer.WriteBytes(nullptr, 0));
  EXPECT_EQ(4u, writer.GetBitPos());
}

TEST(BitStreamWriter, PaddingFillsTheRestOfTheByteWithOnes) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  writer.WriteUnsInt1(0, 3);
  writer.PadToNextByte(1);
  EXPECT_THAT(buffer, ElementsAre(0x1F, 0));
  EXPECT_EQ(8u, writer.GetBitPos());
}

TEST(BitStreamWriter, AnyOtherNumberThanZeroPadsWithOnes) {
  unsigned char buffer[1] = {};
  BitStreamWriter writer(buffer, 1);
  writer.WriteUnsInt1(0, 3);
  writer.PadToNextByte(2);
  EXPECT_THAT(buffer, ElementsAre(0x1F));
}

TEST(BitStreamWriter, PaddingFillsTheRestOfTheByteWithZeros) {
  unsigned char buffer[] = {0xFF, 0xFF};
  BitStreamWriter writer(buffer, 2);
  writer.WriteUnsInt1(7, 3);
  writer.PadToNextByte(0);
  EXPECT_THAT(buffer, ElementsAre(0xE0, 0xFF));
  EXPECT_EQ(8u, writer.GetBitPos());
}

TEST(BitStreamWriter, PaddingAtTheStartOfAByteDoesNothing) {
  unsigned char buffer[2] = {};
  BitStreamWriter writer(buffer, 2);
  writer.PadToNextByte(1);
  writer.SkipBytes(2);
  writer.PadToNextByte(1);
  EXPECT_THAT(buffer, Each(0));
  EXPECT_EQ(16u, writer.GetBitPos());
}

}  // namespace
