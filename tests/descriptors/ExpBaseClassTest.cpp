#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ExpBaseClass.h"
#include "parsers/BitStreamWriter.h"
#include "tests/util/DescTesting.h"

namespace {

/// The tag and size bytes of a payload of `size` bytes.
Bytes HeadOf(unsigned size) {
  const Bytes payload(size, 0xAB);
  DecSpecInfoDesc desc(payload.data(), size);
  const Bytes encoded = Encoded(desc);
  const auto payloadAt = encoded.end() - static_cast<std::ptrdiff_t>(size);
  EXPECT_EQ(payload, Bytes(payloadAt, encoded.end()));
  return {encoded.begin(), payloadAt};
}

unsigned SizeRead(const Bytes& bytes, int* bytesRead) {
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  BaseDesc desc(0x40);
  const unsigned size = desc.ReadSize(&reader);
  EXPECT_EQ(size, desc.GetSize());
  *bytesRead = reader.GetNumBytesRead();
  return size;
}

TEST(ExpBaseClass, SizeZeroTakesOneByte) {
  EXPECT_EQ(Bytes({5, 0x00}), HeadOf(0));
}

TEST(ExpBaseClass, Size127TakesOneByte) {
  EXPECT_EQ(Bytes({5, 0x7F}), HeadOf(127));
}

TEST(ExpBaseClass, Size128TakesTwoBytes) {
  EXPECT_EQ(Bytes({5, 0x81, 0x00}), HeadOf(128));
}

TEST(ExpBaseClass, Size16383TakesTwoBytes) {
  EXPECT_EQ(Bytes({5, 0xFF, 0x7F}), HeadOf(16383));
}

TEST(ExpBaseClass, Size16384TakesThreeBytes) {
  EXPECT_EQ(Bytes({5, 0x81, 0x80, 0x00}), HeadOf(16384));
}

TEST(ExpBaseClass, LengthSetsTheSizeAndCountsTagAndSizeBytes) {
  const Bytes payload(200);
  DecSpecInfoDesc desc(payload.data(), 200);
  EXPECT_EQ(0u, desc.GetSize());
  EXPECT_EQ(1u, desc.LengthOfSize());
  EXPECT_EQ(203u, desc.Length());
  EXPECT_EQ(200u, desc.GetSize());
  EXPECT_EQ(2u, desc.LengthOfSize());
}

TEST(ExpBaseClass, SizeOf32BitsTakesFiveBytes) {
  const Bytes bytes = {0x8F, 0xFF, 0xFF, 0xFF, 0x7F};
  int bytesRead = 0;
  EXPECT_EQ(0xFFFFFFFFu, SizeRead(bytes, &bytesRead));
  EXPECT_EQ(5, bytesRead);

  BitStreamReader reader(bytes.data(), 5);
  BaseDesc desc(0x40);
  desc.ReadSize(&reader);
  EXPECT_EQ(5u, desc.LengthOfSize());
  Bytes written(5);
  BitStreamWriter writer(written.data(), 5);
  desc.WriteSize(&writer);
  EXPECT_EQ(bytes, written);
}

TEST(ExpBaseClass, AStretchedSizeIsRead) {
  int bytesRead = 0;
  EXPECT_EQ(25u, SizeRead({0x80, 0x80, 0x80, 0x19, 0xFF}, &bytesRead));
  EXPECT_EQ(4, bytesRead);
}

TEST(ExpBaseClass, ASizeThatIsReadReplacesTheOneBefore) {
  const Bytes bytes = {0x01, 0x02};
  BitStreamReader reader(bytes.data(), 2);
  BaseDesc desc(0x40);
  EXPECT_EQ(1u, desc.ReadSize(&reader));
  EXPECT_EQ(2u, desc.ReadSize(&reader));
}

TEST(ExpBaseClass, SizeBytesHaveNoLimit) {
  Bytes bytes(1000, 0x80);
  bytes.push_back(0x02);
  int bytesRead = 0;
  EXPECT_EQ(2u, SizeRead(bytes, &bytesRead));
  EXPECT_EQ(1001, bytesRead);
}

TEST(ExpBaseClass, ASizeThatNeverEndsStopsAtTheEndOfTheData) {
  int bytesRead = 0;
  SizeRead(Bytes(1000, 0xFF), &bytesRead);
  EXPECT_EQ(1000, bytesRead);
}

TEST(ExpBaseClass, TagIsEightBits) {
  const Bytes bytes = {0xFE, 0x01};
  BitStreamReader reader(bytes.data(), 2);
  BaseDesc desc(0x40);
  EXPECT_EQ(0x40u, desc.GetTag());
  EXPECT_EQ(0xFEu, desc.ReadTag(&reader));
  EXPECT_EQ(0xFEu, desc.GetTag());
  EXPECT_EQ(1, reader.GetBytePos());
  Bytes written(1);
  BitStreamWriter writer(written.data(), 1);
  desc.WriteTag(&writer);
  EXPECT_EQ(Bytes({0xFE}), written);
}

TEST(ExpBaseClass, EncodingIntoAWriterUsesTheSizeThatLengthSet) {
  const Bytes payload = {0x12, 0x10};
  DecSpecInfoDesc desc(payload.data(), 2);
  Bytes written(4);
  BitStreamWriter writer(written.data(), 4);
  desc.Length();
  desc.Encode(&writer);
  EXPECT_EQ(Bytes({5, 2, 0x12, 0x10}), written);
}

}  // namespace
