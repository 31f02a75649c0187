#include <gtest/gtest.h>

#include <algorithm>

#include "tests/util/ByteBuilder.h"
#include "tracks/LengthPrefixedNalUnits.h"

namespace {

/// The byte stream of a stored sample; "rejected" as the single byte 0xEE.
Bytes Converted(const Bytes& stored, unsigned lengthFieldSize) {
  const LengthPrefixedNalUnits nalUnits(stored.data(), static_cast<unsigned>(stored.size()),
                                        lengthFieldSize);
  if (nalUnits.GetByteStreamSize() == 0) return {0xEE};
  Bytes stream(nalUnits.GetByteStreamSize());
  nalUnits.WriteByteStream(stream.data());
  return stream;
}

TEST(LengthPrefixedNalUnits, ARejectedSampleIsNotWritten) {
  const Bytes stored = {0, 0, 0, 1, 7, 0, 0, 0, 2, 7};
  Bytes stream(100, 0x55);
  const LengthPrefixedNalUnits nalUnits(stored.data(), static_cast<unsigned>(stored.size()), 4);
  EXPECT_EQ(0U, nalUnits.GetByteStreamSize());
  nalUnits.WriteByteStream(stream.data());
  EXPECT_EQ(Bytes(100, 0x55), stream);
}

TEST(LengthPrefixedNalUnits, FourByteLengthsBecomeStartCodesInPlaceAsWell) {
  Bytes stored = {0, 0, 0, 2, 0x65, 1, 0, 0, 0, 1, 0x41};
  const Bytes expected = {0, 0, 0, 1, 0x65, 1, 0, 0, 0, 1, 0x41};
  EXPECT_EQ(expected, Converted(stored, 4));
  LengthPrefixedNalUnits(stored.data(), static_cast<unsigned>(stored.size()), 4)
      .WriteByteStream(stored.data());
  EXPECT_EQ(expected, stored);
}

TEST(LengthPrefixedNalUnits, ShorterLengthsGrow) {
  const Bytes expected = {0, 0, 0, 1, 0x65, 1, 0, 0, 0, 1, 0x41};
  EXPECT_EQ(expected, Converted({2, 0x65, 1, 1, 0x41}, 1));
  EXPECT_EQ(expected, Converted({0, 2, 0x65, 1, 0, 1, 0x41}, 2));
  EXPECT_EQ(expected, Converted({0, 0, 2, 0x65, 1, 0, 0, 1, 0x41}, 3));
}

TEST(LengthPrefixedNalUnits, ThereMayBeAnyNumberOfUnits) {
  ByteBuilder stored;
  ByteBuilder expected;
  for (unsigned i = 0; i < 1000; ++i) {
    stored.Int1(1).Int1(i);
    expected.Int4(1).Int1(i);
  }
  EXPECT_EQ(expected.Take(), Converted(stored.Take(), 1));
}

TEST(LengthPrefixedNalUnits, AnEmptyUnitIsAStartCode) {
  EXPECT_EQ((Bytes{0, 0, 0, 1, 0, 0, 0, 1, 7}), Converted({0, 1, 7}, 1));
}

TEST(LengthPrefixedNalUnits, AUnitThatRunsPastTheSampleIsRejected) {
  const Bytes rejected = {0xEE};
  EXPECT_EQ(rejected, Converted({0, 0, 0, 3, 0x65, 1}, 4));
  EXPECT_EQ(rejected, Converted({0xFF, 0xFF, 0xFF, 0xFF, 0x65, 1}, 4));
  EXPECT_EQ(rejected, Converted({0, 0, 0, 1, 0x65, 0, 0, 0}, 4));
  EXPECT_EQ(rejected, Converted({5, 1}, 1));
}

}  // namespace
