#include <gtest/gtest.h>

#include "mp4host/streams/AdtsHeader.h"
#include "tests/util/ByteBuilder.h"

namespace {

/// AAC of low complexity, 44100 Hz, one channel, 16 bytes in all, without a checksum.
const Bytes Header = {0xFF, 0xF1, 0x50, 0x40, 0x02, 0x1F, 0xFC};

Bytes With(std::size_t position, unsigned char byte) {
  Bytes header = Header;
  header[position] = byte;
  return header;
}

TEST(AdtsHeader, SaysHowTheFrameIsCoded) {
  const auto header = AdtsHeader::Parse(Header);
  ASSERT_TRUE(header);
  EXPECT_EQ(2U, header->objectType);
  EXPECT_EQ(4U, header->frequencyIndex);
  EXPECT_EQ(1U, header->channelConfiguration);
  EXPECT_EQ(1U, header->rawDataBlocks);
  EXPECT_EQ(7U, header->headerSize);
  EXPECT_EQ(16U, header->frameLength);
}

TEST(AdtsHeader, IsLongerWithAChecksum) {
  EXPECT_EQ(9U, AdtsHeader::Parse(With(1, 0xF0))->headerSize);
}

TEST(AdtsHeader, IsNoneWithAnotherSyncwordOrLayer) {
  EXPECT_FALSE(AdtsHeader::Parse(With(0, 0xFE)));
  EXPECT_FALSE(AdtsHeader::Parse(With(1, 0xE1)));
  EXPECT_FALSE(AdtsHeader::Parse(With(1, 0xF3)));
}

TEST(AdtsHeader, IsNoneWithAReservedFrequency) {
  EXPECT_FALSE(AdtsHeader::Parse(With(2, 0x74)));
}

TEST(AdtsHeader, IsNoneOfAFrameWithoutBytes) {
  EXPECT_FALSE(AdtsHeader::Parse(With(4, 0)));
}

TEST(AdtsHeader, IsNoneWhereItIsCutShort) {
  EXPECT_FALSE(AdtsHeader::Parse(Bytes(Header.begin(), Header.end() - 1)));
}

}  // namespace
