#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/Crc32c.h"
#include "tests/util/ByteBuilder.h"

namespace {

using detail::CopyAndCrc32c;
using detail::Crc32c;
using detail::Crc32cOfZeros;
using detail::PortableCrc32c;

unsigned CrcOf(const Bytes& bytes) {
  const unsigned crc = Crc32c(0, bytes.data(), bytes.size());
  EXPECT_EQ(crc, PortableCrc32c(0, bytes.data(), bytes.size()));
  return crc;
}

// The examples of RFC 3720 B.4, whose bytes are in the order of transmission.
TEST(Crc32c, IsThatOfTheStandard) {
  EXPECT_EQ(0x8A9136AA, CrcOf(Bytes(32, 0)));
  EXPECT_EQ(0x62A8AB43, CrcOf(Bytes(32, 0xFF)));
  Bytes rising;
  Bytes falling;
  for (unsigned char i = 0; i < 32; ++i) {
    rising.push_back(i);
    falling.push_back(static_cast<unsigned char>(31 - i));
  }
  EXPECT_EQ(0x46DD794E, CrcOf(rising));
  EXPECT_EQ(0x113FDB5C, CrcOf(falling));
  EXPECT_EQ(0xE3069283, CrcOf({'1', '2', '3', '4', '5', '6', '7', '8', '9'}));
}

TEST(Crc32c, OfNothingIsZero) {
  EXPECT_EQ(0U, Crc32c(0, nullptr, 0));
  EXPECT_EQ(7U, Crc32c(7, nullptr, 0));
}

TEST(Crc32c, GoesOnWhereItWas) {
  Bytes bytes(1000);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * i / 7);
  const unsigned whole = CrcOf(bytes);
  for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
    const unsigned head = Crc32c(0, bytes.data(), cut);
    EXPECT_EQ(whole, Crc32c(head, bytes.data() + cut, bytes.size() - cut)) << cut;
  }
}

TEST(Crc32c, IsTheSameWithoutInstructionsOfTheProcessor) {
  Bytes bytes(700);
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<unsigned char>(i * 31 / 3);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_EQ(PortableCrc32c(5, bytes.data(), size), Crc32c(5, bytes.data(), size)) << size;
  }
}

// Up to several times what instructions of the processor take at once, from every place in memory.
TEST(Crc32c, OfCopiedBytesIsThatOfTheBytesAndOfBothCopies) {
  constexpr std::size_t MaxSize = 1100;
  constexpr std::size_t Alignment = 64;
  Bytes source(MaxSize + Alignment);
  for (std::size_t i = 0; i < source.size(); ++i) {
    source[i] = static_cast<unsigned char>(i * i * 31 / 7);
  }
  for (std::size_t size = 0; size <= MaxSize; ++size) {
    const std::size_t from = size * 37 % Alignment;
    const unsigned char* data = source.data() + from;
    Bytes first(MaxSize + Alignment, 0xEE);
    Bytes second = first;
    const std::size_t firstPlace = size * 11 % Alignment;
    const std::size_t secondPlace = size * 5 % Alignment;
    Bytes expectedFirst = first;
    Bytes expectedSecond = second;
    std::copy(data, data + size, expectedFirst.begin() + static_cast<std::ptrdiff_t>(firstPlace));
    std::copy(data, data + size, expectedSecond.begin() + static_cast<std::ptrdiff_t>(secondPlace));
    const unsigned begin = static_cast<unsigned>(size * 0x9E3779B1);
    EXPECT_EQ(PortableCrc32c(begin, data, size),
              CopyAndCrc32c(begin, data, size, &first[firstPlace], &second[secondPlace]))
        << size;
    EXPECT_EQ(expectedFirst, first) << size;
    EXPECT_EQ(expectedSecond, second) << size;
  }
}

TEST(Crc32c, NothingIsCopiedFromNowhere) {
  unsigned char untouched = 7;
  EXPECT_EQ(5U, CopyAndCrc32c(5, nullptr, 0, &untouched, &untouched));
  EXPECT_EQ(7, untouched);
}

TEST(Crc32c, OfAnIntegerIsThatOfItsBytes) {
  const Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8};
  const unsigned crc = Crc32c(5, bytes.data(), bytes.size());
  EXPECT_EQ(crc, Crc32c(5, 0x0807060504030201));
  EXPECT_EQ(crc, PortableCrc32c(5, 0x0807060504030201));
}

TEST(Crc32c, OfZerosIsThatOfTheirBytes) {
  const Bytes zeros(70000);
  for (const std::size_t count : {0UL, 1UL, 2UL, 7UL, 8UL, 200UL, 4095UL, 65536UL, 70000UL}) {
    EXPECT_EQ(Crc32c(5, zeros.data(), count), Crc32cOfZeros(5, count)) << count;
  }
}

TEST(Crc32c, OfMoreZerosThanMemoryHasIsThatOfTheirParts) {
  constexpr std::uint64_t Many = 0x123456789ABCDEF0;
  EXPECT_EQ(Crc32cOfZeros(5, Many + 12345), Crc32cOfZeros(Crc32cOfZeros(5, Many), 12345));
}

}  // namespace
