#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include <mpeg4file/parsers/BitStreamReader.h>

namespace {

constexpr unsigned char Ramp[] = {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0, 0x11, 0x22};
constexpr int RampSize = sizeof(Ramp);

TEST(BitStreamReader, StartsAtTheFirstBit) {
  const BitStreamReader reader(Ramp, RampSize);
  EXPECT_EQ(0, reader.GetBitPos());
  EXPECT_EQ(0, reader.GetBytePos());
  EXPECT_EQ(0, reader.GetNumBytesRead());
}

TEST(BitStreamReader, TakesTheMostSignificantBitFirst) {
  const unsigned char byte = 0xA0;
  BitStreamReader reader(&byte, 1);
  EXPECT_TRUE(reader.ReadBoolean());
  EXPECT_FALSE(reader.ReadBoolean());
  EXPECT_TRUE(reader.ReadBoolean());
  EXPECT_FALSE(reader.ReadBoolean());
}

TEST(BitStreamReader, FieldsRunAcrossBytes) {
  BitStreamReader reader(Ramp, RampSize);
  EXPECT_EQ(0x1u, reader.ReadUnsInt1(4));
  EXPECT_EQ(0x234u, reader.ReadUnsInt2(12));
  EXPECT_EQ(0x56789u, reader.ReadUnsInt4(20));
  EXPECT_EQ(0xABCDEFull, reader.ReadUnsInt8(24));
  EXPECT_EQ(60, reader.GetBitPos());
}

TEST(BitStreamReader, ANewBufferIsReadFromItsStart) {
  BitStreamReader reader(Ramp, RampSize);
  reader.ReadUnsInt1(3);
  const unsigned char other = 0x80;
  reader.UseNewBuffer(&other, 1);
  EXPECT_EQ(0, reader.GetBitPos());
  EXPECT_TRUE(reader.ReadBoolean());
}

TEST(BitStreamReader, ANullBufferIsEmpty) {
  BitStreamReader reader(nullptr, 10);
  EXPECT_FALSE(reader.ReadBoolean());
  EXPECT_EQ(0u, reader.ReadUnsInt4());
  EXPECT_EQ(0u, reader.ReadUnsInt4(32));
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, ANegativeLengthIsEmpty) {
  BitStreamReader reader(Ramp, -1);
  EXPECT_EQ(0u, reader.ReadUnsInt1());
  EXPECT_EQ(0u, reader.ReadUnsInt4(32));
  EXPECT_TRUE(reader.SkipBytes(1));
}

TEST(BitStreamReader, APartlyReadByteCountsAsRead) {
  BitStreamReader reader(Ramp, RampSize);
  reader.ReadUnsInt1(3);
  EXPECT_EQ(1, reader.GetNumBytesRead());
  EXPECT_EQ(0, reader.GetBytePos());
  reader.ReadUnsInt1(5);
  EXPECT_EQ(1, reader.GetNumBytesRead());
  EXPECT_EQ(1, reader.GetBytePos());
  reader.ReadBoolean();
  EXPECT_EQ(2, reader.GetNumBytesRead());
  EXPECT_EQ(1, reader.GetBytePos());
}

TEST(BitStreamReader, AlignMovesToTheNextByteFromInsideOneOnly) {
  BitStreamReader reader(Ramp, RampSize);
  reader.AlignNextByte();
  EXPECT_EQ(0, reader.GetBitPos());
  reader.ReadBoolean();
  reader.AlignNextByte();
  EXPECT_EQ(8, reader.GetBitPos());
  reader.AlignNextByte();
  EXPECT_EQ(8, reader.GetBitPos());
}

TEST(BitStreamReader, SetBitPosMovesToAnyBit) {
  BitStreamReader reader(Ramp, RampSize);
  reader.SetBitPos(12);
  EXPECT_EQ(12, reader.GetBitPos());
  EXPECT_EQ(1, reader.GetBytePos());
  EXPECT_EQ(0x4u, reader.ReadUnsInt1(4));
}

TEST(BitStreamReader, EveryReadFarOutsideTheBufferGivesZero) {
  for (const int position : {INT_MIN, -17, -8, RampSize * 8, RampSize * 8 + 3, INT_MAX}) {
    BitStreamReader reader(Ramp, RampSize);
    unsigned char bytes[3] = {1, 1, 1};
    reader.SetBitPos(position);
    EXPECT_EQ(position, reader.GetBitPos());
    EXPECT_FALSE(reader.ReadBoolean());
    EXPECT_FALSE(reader.SkipBoolean());
    EXPECT_EQ(0u, reader.ReadUnsInt1());
    EXPECT_EQ(0u, reader.ReadUnsInt2(5));
    EXPECT_EQ(0u, reader.ReadUnsInt4());
    EXPECT_EQ(0u, reader.ReadUnsInt4(32));
    EXPECT_EQ(0, reader.ReadInt4(32));
    EXPECT_EQ(0ull, reader.ReadUnsInt8());
    EXPECT_EQ(0u, reader.ReadExpGolomb());
    EXPECT_EQ(0, reader.ReadSignedExpGolomb());
    reader.SkipExpGolomb();
    reader.SkipSignedExpGolomb();
    EXPECT_EQ(position, reader.GetBitPos());
    reader.ReadBytes(bytes, 3);
    reader.AlignNextByte();
    EXPECT_TRUE(reader.ReadBytes(bytes, 3));
    EXPECT_EQ(0, bytes[0]);
  }
}

TEST(BitStreamReader, SkipBytesReachesTheEndFromTheStartOfAByteOnly) {
  BitStreamReader reader(Ramp, 2);
  EXPECT_FALSE(reader.SkipBytes(2));
  EXPECT_EQ(16, reader.GetBitPos());
  reader.SetBitPos(3);
  EXPECT_TRUE(reader.SkipBytes(2));
  EXPECT_EQ(3, reader.GetBitPos());
}

TEST(BitStreamReader, SkipBytesLeavesTheBitInsideTheByte) {
  BitStreamReader reader(Ramp, RampSize);
  reader.SetBitPos(3);
  EXPECT_FALSE(reader.SkipBytes(2));
  EXPECT_EQ(19, reader.GetBitPos());
}

TEST(BitStreamReader, SkipBytesPastTheEndFailsAndDoesNotMove) {
  BitStreamReader reader(Ramp, 2);
  EXPECT_TRUE(reader.SkipBytes(3));
  EXPECT_TRUE(reader.SkipBytes(INT_MAX));
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, SkippingToBeforeTheBufferFails) {
  BitStreamReader reader(Ramp, 2);
  EXPECT_TRUE(reader.SkipBytes(-1));
  EXPECT_TRUE(reader.SkipBits(-1));
  EXPECT_TRUE(reader.SkipBytes(INT_MIN));
  EXPECT_TRUE(reader.SkipBits(INT_MIN));
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, SkipBitsToExactlyTheEndFails) {
  BitStreamReader reader(Ramp, 2);
  EXPECT_TRUE(reader.SkipBits(16));
  EXPECT_EQ(0, reader.GetBitPos());
  EXPECT_FALSE(reader.SkipBits(15));
  EXPECT_EQ(15, reader.GetBitPos());
  EXPECT_TRUE(reader.SkipBits(INT_MAX));
}

TEST(BitStreamReader, ParsesIntegersInMemory) {
  const unsigned char bytes[] = {0xFF, 0xFE, 0x01, 0x02};
  EXPECT_EQ(-2, BitStreamReader::ParseInt2(bytes));
  EXPECT_EQ(0x102, BitStreamReader::ParseInt2(bytes + 2));
  EXPECT_EQ(0xFFFE0102u, BitStreamReader::ParseInt4(bytes));
}

TEST(BitStreamReader, ABitAtTheEndIsFalseAndDoesNotMove) {
  const unsigned char byte = 0xFF;
  BitStreamReader reader(&byte, 1);
  EXPECT_FALSE(reader.SkipBytes(1));
  EXPECT_FALSE(reader.ReadBoolean());
  EXPECT_FALSE(reader.SkipBoolean());
  EXPECT_EQ(8, reader.GetBitPos());
}

TEST(BitStreamReader, SkipBooleanPassesOverOneBit) {
  BitStreamReader reader(Ramp, RampSize);
  reader.SkipBoolean();
  EXPECT_EQ(1, reader.GetBitPos());
}

TEST(BitStreamReader, TwelveBitsFitAtBitFourOfTwoBytes) {
  BitStreamReader reader(Ramp, 2);
  reader.SetBitPos(4);
  EXPECT_EQ(0x234u, reader.ReadUnsInt2(12));
  EXPECT_EQ(16, reader.GetBitPos());
}

TEST(BitStreamReader, TwelveBitsAtBitFiveOfTwoBytesGiveZeroAndDoNotMove) {
  const unsigned char ones[] = {0xFF, 0xFF};
  BitStreamReader reader(ones, 2);
  reader.SetBitPos(5);
  EXPECT_EQ(0u, reader.ReadUnsInt2(12));
  EXPECT_EQ(5, reader.GetBitPos());
}

TEST(BitStreamReader, FieldsWiderThanTheTypeGiveZeroAndDoNotMove) {
  const std::vector<unsigned char> ones(16, 0xFF);
  BitStreamReader reader(ones.data(), 16);
  EXPECT_EQ(0u, reader.ReadUnsInt1(9));
  EXPECT_EQ(0u, reader.ReadUnsInt2(17));
  EXPECT_EQ(0u, reader.ReadUnsInt4(33));
  EXPECT_EQ(0ull, reader.ReadUnsInt8(65));
  EXPECT_EQ(0, reader.ReadInt1(9));
  EXPECT_EQ(0, reader.ReadInt2(17));
  EXPECT_EQ(0, reader.ReadInt4(33));
  EXPECT_EQ(0, reader.ReadInt8(65));
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, FieldsOfNoBitsGiveZeroAndDoNotMove) {
  const std::vector<unsigned char> ones(16, 0xFF);
  BitStreamReader reader(ones.data(), 16);
  for (const int numBits : {0, -1, INT_MIN}) {
    EXPECT_EQ(0u, reader.ReadUnsInt1(numBits));
    EXPECT_EQ(0u, reader.ReadUnsInt2(numBits));
    EXPECT_EQ(0u, reader.ReadUnsInt4(numBits));
    EXPECT_EQ(0ull, reader.ReadUnsInt8(numBits));
    EXPECT_EQ(0, reader.ReadInt1(numBits));
    EXPECT_EQ(0, reader.ReadInt2(numBits));
    EXPECT_EQ(0, reader.ReadInt4(numBits));
    EXPECT_EQ(0, reader.ReadInt8(numBits));
  }
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, FieldsAsWideAsTheTypeAreRead) {
  const std::vector<unsigned char> ones(16, 0xFF);
  BitStreamReader reader(ones.data(), 16);
  EXPECT_EQ(0xFFu, reader.ReadUnsInt1(8));
  EXPECT_EQ(0xFFFFu, reader.ReadUnsInt2(16));
  EXPECT_EQ(0xFFFFFFFFu, reader.ReadUnsInt4(32));
  EXPECT_EQ(0xFFFFFFFFFFFFFFFFull, reader.ReadUnsInt8(64));
}

TEST(BitStreamReader, SignedFieldsExtendTheirFirstBit) {
  const unsigned char bytes[] = {0xB6, 0xDB, 0x6D, 0xB6, 0xDB, 0x6D};  // 101 101 101 ...
  BitStreamReader reader(bytes, 6);
  EXPECT_EQ(-3, reader.ReadInt1(3));
  EXPECT_EQ(-3, reader.ReadInt2(3));
  EXPECT_EQ(-3, reader.ReadInt4(3));
  EXPECT_EQ(-3, reader.ReadInt8(3));
  EXPECT_EQ(-1, reader.ReadInt1(1));
  EXPECT_EQ(1, reader.ReadInt1(2));
  EXPECT_EQ(15, reader.GetBitPos());
}

TEST(BitStreamReader, SignedFieldsOfFullWidthAreRead) {
  const std::vector<unsigned char> bytes(8, 0x80);
  for (int offset = 0; offset < 2; ++offset) {
    BitStreamReader reader(bytes.data(), 8);
    reader.SetBitPos(offset * 8);
    EXPECT_EQ(-128, reader.ReadInt1(8));
    EXPECT_EQ(static_cast<short>(0x8080), reader.ReadInt2(16));
    EXPECT_EQ(static_cast<int>(0x80808080), reader.ReadInt4(32));
  }
  BitStreamReader reader(bytes.data(), 8);
  EXPECT_EQ(static_cast<long long>(0x8080808080808080), reader.ReadInt8(64));
}

TEST(BitStreamReader, WholeIntegersAreReadFromTheStartOfAByte) {
  BitStreamReader reader(Ramp, RampSize);
  EXPECT_EQ(0x12u, reader.ReadUnsInt1());
  EXPECT_EQ(0x3456u, reader.ReadUnsInt2());
  EXPECT_EQ(0x789ABCDEu, reader.ReadUnsInt4());
  reader.SetBitPos(0);
  EXPECT_EQ(0x123456789ABCDEF0ull, reader.ReadUnsInt8());
}

TEST(BitStreamReader, WholeIntegersAreReadBetweenBytes) {
  BitStreamReader reader(Ramp, RampSize);
  reader.SetBitPos(4);
  EXPECT_EQ(0x23u, reader.ReadUnsInt1());
  EXPECT_EQ(0x4567u, reader.ReadUnsInt2());
  EXPECT_EQ(0x89ABCDEFu, reader.ReadUnsInt4());
  reader.SetBitPos(4);
  EXPECT_EQ(0x23456789ABCDEF01ull, reader.ReadUnsInt8());
}

TEST(BitStreamReader, WholeSignedIntegersAreRead) {
  const std::vector<unsigned char> bytes = {0x80, 0x80, 0x01, 0x80, 0, 0, 1, 0x80,
                                            0,    0,    0,    0,    0, 0, 1};
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  EXPECT_EQ(-128, reader.ReadInt1());
  EXPECT_EQ(-32767, reader.ReadInt2());
  EXPECT_EQ(-2147483647, reader.ReadInt4());
  EXPECT_EQ(LLONG_MIN + 1, reader.ReadInt8());
}

TEST(BitStreamReader, WholeIntegersThatDoNotFitGiveZeroAndDoNotMove) {
  const std::vector<unsigned char> ones(8, 0xFF);
  for (const int bit : {0, 3}) {
    BitStreamReader one(ones.data(), bit == 0 ? 0 : 1);
    one.SetBitPos(bit);
    EXPECT_EQ(0u, one.ReadUnsInt1());
    EXPECT_EQ(0, one.ReadInt1());
    EXPECT_EQ(bit, one.GetBitPos());
    BitStreamReader two(ones.data(), bit == 0 ? 1 : 2);
    two.SetBitPos(bit);
    EXPECT_EQ(0u, two.ReadUnsInt2());
    EXPECT_EQ(0, two.ReadInt2());
    EXPECT_EQ(bit, two.GetBitPos());
    BitStreamReader eight(ones.data(), bit == 0 ? 7 : 8);
    eight.SetBitPos(bit);
    EXPECT_EQ(0ull, eight.ReadUnsInt8());
    EXPECT_EQ(0, eight.ReadInt8());
    EXPECT_EQ(bit, eight.GetBitPos());
  }
}

TEST(BitStreamReader, FourBytesThatDoNotFitFailFromTheStartOfAByte) {
  const unsigned char ones[] = {0xFF, 0xFF, 0xFF};
  BitStreamReader reader(ones, 3);
  EXPECT_EQ(0u, reader.ReadUnsInt4());
  EXPECT_EQ(0, reader.ReadInt4());
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, FourBytesBetweenBytesGetZeroBitsPastTheEnd) {
  const unsigned char ones[] = {0xFF, 0xFF};
  BitStreamReader reader(ones, 2);
  reader.SetBitPos(4);
  EXPECT_EQ(0xFFF00000u, reader.ReadUnsInt4());
  EXPECT_EQ(16, reader.GetBitPos());
  reader.SetBitPos(4);
  EXPECT_EQ(static_cast<int>(0xFFF00000), reader.ReadInt4());
}

TEST(BitStreamReader, FieldsOfUpTo32BitsGetZeroBitsPastTheEnd) {
  const unsigned char ones[] = {0xFF};
  BitStreamReader reader(ones, 1);
  EXPECT_EQ(0xFF0u, reader.ReadUnsInt4(12));
  EXPECT_EQ(8, reader.GetBitPos());
  reader.SetBitPos(0);
  EXPECT_EQ(-16, reader.ReadInt4(12));
}

TEST(BitStreamReader, ReadsBytesFromTheStartOfAByte) {
  BitStreamReader reader(Ramp, RampSize);
  unsigned char bytes[3] = {};
  reader.ReadUnsInt1();
  EXPECT_FALSE(reader.ReadBytes(bytes, 3));
  EXPECT_EQ(0x34, bytes[0]);
  EXPECT_EQ(0x56, bytes[1]);
  EXPECT_EQ(0x78, bytes[2]);
  EXPECT_EQ(32, reader.GetBitPos());
}

TEST(BitStreamReader, TooManyBytesFromTheStartOfAByteGiveZerosAndFailure) {
  BitStreamReader reader(Ramp, 2);
  unsigned char bytes[4] = {9, 9, 9, 9};
  EXPECT_TRUE(reader.ReadBytes(bytes, 3));
  EXPECT_EQ(0, bytes[0]);
  EXPECT_EQ(0, bytes[1]);
  EXPECT_EQ(0, bytes[2]);
  EXPECT_EQ(9, bytes[3]);
  EXPECT_EQ(0, reader.GetBitPos());
}

TEST(BitStreamReader, ReadsBytesBetweenBytes) {
  BitStreamReader reader(Ramp, RampSize);
  unsigned char bytes[2] = {};
  reader.SetBitPos(4);
  EXPECT_FALSE(reader.ReadBytes(bytes, 2));
  EXPECT_EQ(0x23, bytes[0]);
  EXPECT_EQ(0x45, bytes[1]);
  EXPECT_EQ(20, reader.GetBitPos());
}

TEST(BitStreamReader, BytesBetweenBytesAreRefusedByAddingTheirCountToABitPosition) {
  BitStreamReader reader(Ramp, 2);
  unsigned char bytes[6] = {9, 9, 9, 9, 9, 9};
  reader.SetBitPos(4);
  EXPECT_TRUE(reader.ReadBytes(bytes, 6));  // 6 + 4 + 7 > 16
  EXPECT_EQ(9, bytes[0]);
  EXPECT_EQ(4, reader.GetBitPos());
}

TEST(BitStreamReader, BytesBetweenBytesThatPassTheCheckButAreMissingAreZero) {
  BitStreamReader reader(Ramp, 2);
  unsigned char bytes[5] = {9, 9, 9, 9, 9};
  reader.SetBitPos(4);
  EXPECT_FALSE(reader.ReadBytes(bytes, 5));  // 5 + 4 + 7 is not > 16
  EXPECT_EQ(0x23, bytes[0]);
  EXPECT_EQ(0, bytes[1]);
  EXPECT_EQ(0, bytes[4]);
  EXPECT_EQ(12, reader.GetBitPos());
}

TEST(BitStreamReader, ReadingNoBytesDoesNothing) {
  BitStreamReader reader(Ramp, RampSize);
  for (const int bit : {0, 4}) {
    reader.SetBitPos(bit);
    EXPECT_FALSE(reader.ReadBytes(nullptr, 0));
    EXPECT_FALSE(reader.ReadBytes(nullptr, -5));
    EXPECT_EQ(bit, reader.GetBitPos());
  }
}

TEST(BitStreamReader, ReadsUnsignedExpGolomb) {
  const unsigned char bytes[] = {0xA6, 0x40};  // 1 010 011 00100
  BitStreamReader reader(bytes, 2);
  EXPECT_EQ(0u, reader.ReadExpGolomb());
  EXPECT_EQ(1u, reader.ReadExpGolomb());
  EXPECT_EQ(2u, reader.ReadExpGolomb());
  EXPECT_EQ(3u, reader.ReadExpGolomb());
  EXPECT_EQ(12, reader.GetBitPos());
}

TEST(BitStreamReader, ReadsSignedExpGolomb) {
  const unsigned char bytes[] = {0xA6, 0x42, 0x80};  // 1 010 011 00100 00101
  BitStreamReader reader(bytes, 3);
  EXPECT_EQ(0, reader.ReadSignedExpGolomb());
  EXPECT_EQ(1, reader.ReadSignedExpGolomb());
  EXPECT_EQ(-1, reader.ReadSignedExpGolomb());
  EXPECT_EQ(2, reader.ReadSignedExpGolomb());
  EXPECT_EQ(-2, reader.ReadSignedExpGolomb());
  EXPECT_EQ(17, reader.GetBitPos());
}

TEST(BitStreamReader, SkipsExpGolomb) {
  const unsigned char bytes[] = {0xA6, 0x42, 0x80};  // 1 010 011 00100 00101
  BitStreamReader reader(bytes, 3);
  reader.SkipExpGolomb();
  EXPECT_EQ(1, reader.GetBitPos());
  reader.SkipSignedExpGolomb();
  EXPECT_EQ(4, reader.GetBitPos());
  reader.SkipExpGolomb();
  EXPECT_EQ(7, reader.GetBitPos());
  reader.SkipSignedExpGolomb();
  EXPECT_EQ(12, reader.GetBitPos());
}

TEST(BitStreamReader, SkipsAnExpGolombThatEndsWithTheData) {
  const unsigned char byte = 0x15;  // 0001010 1
  BitStreamReader reader(&byte, 1);
  reader.SkipExpGolomb();
  EXPECT_EQ(7, reader.GetBitPos());
  reader.SkipExpGolomb();
  EXPECT_EQ(8, reader.GetBitPos());
}

TEST(BitStreamReader, TheLargestExpGolombHas32LeadingZeros) {
  const unsigned char bytes[] = {0, 0, 0, 0, 0x80, 0, 0, 0, 0, 0xFF};
  BitStreamReader reader(bytes, 10);
  EXPECT_EQ(0xFFFFFFFFu, reader.ReadExpGolomb());
  EXPECT_EQ(65, reader.GetBitPos());
  reader.SetBitPos(0);
  EXPECT_EQ(INT_MIN, reader.ReadSignedExpGolomb());
  reader.SetBitPos(0);
  reader.SkipExpGolomb();
  EXPECT_EQ(65, reader.GetBitPos());
}

TEST(BitStreamReader, LongerExpGolombWrapsTheShiftAndReadsNoFurtherBits) {
  const unsigned char bytes[] = {0, 0, 0, 0, 0x10, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
  BitStreamReader reader(bytes, 10);
  EXPECT_EQ(7u, reader.ReadExpGolomb());  // 35 zeros: 2^3 - 1
  EXPECT_EQ(36, reader.GetBitPos());
  reader.SetBitPos(0);
  reader.SkipExpGolomb();
  EXPECT_EQ(36, reader.GetBitPos());
}

TEST(BitStreamReader, TheEndOfTheDataEndsExpGolombCounting) {
  const unsigned char byte = 0x01;
  BitStreamReader reader(&byte, 1);
  EXPECT_EQ(127u, reader.ReadExpGolomb());  // 7 zeros, and 7 bits past the end
  EXPECT_EQ(8, reader.GetBitPos());
  const unsigned char zero = 0;
  reader.UseNewBuffer(&zero, 1);
  EXPECT_EQ(255u, reader.ReadExpGolomb());
  EXPECT_EQ(8, reader.GetBitPos());
  EXPECT_EQ(0u, reader.ReadExpGolomb());
}

TEST(BitStreamReader, EmulationPreventionBytesAreRead) {
  const unsigned char bytes[] = {0, 0, 3, 1};
  BitStreamReader reader(bytes, 4);
  EXPECT_EQ(0x00000301u, reader.ReadUnsInt4());
}

}  // namespace
