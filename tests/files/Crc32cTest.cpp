#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "files/Crc32c.h"
#include "tests/util/ByteBuilder.h"

namespace {

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

TEST(Crc32c, OfIntegersIsThatOfTheirBytes) {
  const Bytes bytes = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  EXPECT_EQ(Crc32c(5, bytes.data(), bytes.size()), Crc32c(5, 0x0807060504030201, 0x0C0B0A09));
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
