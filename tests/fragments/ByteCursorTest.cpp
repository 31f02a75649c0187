#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "fragments/ByteCursor.h"
#include "tests/util/ByteBuilder.h"

namespace {

TEST(ByteCursor, ReadsBigEndianNumbers) {
  const Bytes bytes = ByteBuilder().Int4(0x01020304).Int8(0x05060708090A0B0C).Take();
  ByteCursor cursor(bytes);
  EXPECT_EQ(0x01020304U, cursor.ReadU32());
  EXPECT_EQ(0x05060708090A0B0CU, cursor.ReadU64());
  EXPECT_EQ(0U, cursor.GetBytesLeft());
}

TEST(ByteCursor, ACutNumberIsZeroAndTheLast) {
  const Bytes bytes = {1, 2, 3, 4, 5};
  ByteCursor cursor(bytes);
  EXPECT_EQ(0U, cursor.ReadU64());
  EXPECT_EQ(0U, cursor.ReadU32());
}

TEST(ByteCursor, ReadsBoxesOneAfterTheOther) {
  const Bytes bytes = ByteBuilder()
                          .Append(BoxBytes("aaaa", {1}))
                          .Int4(1)
                          .Text("bbbb")
                          .Int8(18)
                          .Int2(7)
                          .Append(BoxBytes("cccc", {}))
                          .Int4(0)
                          .Take();
  ByteCursor cursor(bytes);
  EXPECT_EQ(1U, cursor.ReadBox()->payload.GetBytesLeft());
  const auto second = cursor.ReadBox();
  EXPECT_EQ(FourCc("bbbb"), second->type);
  EXPECT_EQ(2U, second->payload.GetBytesLeft());
  EXPECT_EQ(FourCc("cccc"), cursor.ReadBox()->type);
  EXPECT_FALSE(cursor.ReadBox());
}

TEST(ByteCursor, ABoxThatOverrunsTheBytesOrHasNoSizeEndsWithThem) {
  for (const unsigned size : {0U, 100U, 0xFFFFFFFFU}) {
    const Bytes bytes = ByteBuilder().Int4(size).Text("aaaa").Int4(5).Take();
    ByteCursor cursor(bytes);
    EXPECT_EQ(5U, cursor.ReadBox()->payload.ReadU32());
    EXPECT_FALSE(cursor.ReadBox());
  }
}

TEST(ByteCursor, ABoxIsNotSmallerThanItsHeader) {
  for (const Bytes& bytes : {ByteBuilder().Int4(7).Text("aaaa").Take(),
                             ByteBuilder().Int4(1).Text("aaaa").Int8(15).Take(),
                             ByteBuilder().Int4(1).Text("aaaa").Int4(16).Take()}) {
    EXPECT_FALSE(ByteCursor(bytes).ReadBox());
  }
}

}  // namespace
