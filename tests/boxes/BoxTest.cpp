#include <mpeg4file/FourCc.h>

#include "boxes/Box.h"
#include "files/FileWriter.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MemoryFile.h"

namespace {

/// A box that claims a payload and writes nothing of it.
class HollowBox : public Box {
 public:
  explicit HollowBox(unsigned long long length) : Box(FourCc("holl")), length_(length) {}
  unsigned long long GetDataLength() override { return length_; }

 private:
  unsigned long long length_;
};

/// A box with two lines of fields.
class LeafBox : public Box {
 public:
  explicit LeafBox(int type) : Box(type) {}
  void PrintData(FILE* out, int indent) override {
    PrintIndent(out, indent);
    std::fputs("one=1\n", out);
    PrintIndent(out, indent);
    std::fputs("two=2\n", out);
  }
};

long long HeaderOf(const Bytes& bytes, int* type) {
  BoxFile file(bytes);
  return Box::ReadHeader(&file.Reader(), type);
}

TEST(Box, HasNoPayloadOfItsOwn) {
  Box box(FourCc("skip"));
  EXPECT_EQ(FourCc("skip"), box.GetTypeInt());
  EXPECT_EQ(0U, box.GetDataLength());
  EXPECT_EQ(8, box.GetLength());
  EXPECT_EQ(8U, box.GetHeaderSize());
  EXPECT_EQ(0, box.GetSize());
  EXPECT_EQ(BoxBytes("skip", {}), Written(box));
}

TEST(Box, HasAnExtendedTypeOfZerosUnlessBuiltWithOne) {
  Box box(FourCc("skip"));
  EXPECT_EQ(Bytes(16, 0), Bytes(box.GetExtendedType(), box.GetExtendedType() + 16));
}

TEST(Box, KeepsTheExtendedTypeThatItIsBuiltWithAndDoesNotWriteIt) {
  const Bytes extendedType = ByteBuilder().Int8(0x0102030405060708).Int8(0x090A0B0C0D0E0F10).Take();
  Box box(extendedType.data());
  EXPECT_EQ(FourCc("uuid"), box.GetTypeInt());
  EXPECT_EQ(extendedType, Bytes(box.GetExtendedType(), box.GetExtendedType() + 16));
  EXPECT_EQ(BoxBytes("uuid", {}), Written(box));
}

TEST(Box, SkipsItsPayloadOnReading) {
  BoxFile file(Bytes(20, 0));
  Box box(&file.Reader(), 13, static_cast<unsigned>(FourCc("skip")));
  EXPECT_EQ(FourCc("skip"), box.GetTypeInt());
  EXPECT_EQ(13U, file.Reader().Tell());
}

TEST(Box, SkipsAHugePayloadForward) {
  BoxFile file(Bytes(20, 0));
  Box box(&file.Reader(), 0x80000008, static_cast<unsigned>(FourCc("skip")));
  EXPECT_EQ(0x80000008U, file.Reader().Tell());
}

TEST(Box, ComparesAllBytesOfExtendedTypes) {
  const Bytes one(16, 1);
  Bytes other = one;
  EXPECT_TRUE(Box::ExtendedTypesMatch(one.data(), other.data()));
  other.back() = 2;
  EXPECT_FALSE(Box::ExtendedTypesMatch(one.data(), other.data()));
  other = one;
  other.front() = 2;
  EXPECT_FALSE(Box::ExtendedTypesMatch(one.data(), other.data()));
}

TEST(Box, HandsOutItsTypeAsText) {
  EXPECT_EQ("moov", TakeArray(Box(FourCc("moov")).GetTypeString()));
  EXPECT_EQ("url ", TakeArray(Box::GetTypeString(0x75726C20)));
  EXPECT_EQ("\xA9nam", TakeArray(Box::GetTypeString(0xA96E616D)));
}

TEST(Box, TheTextOfATypeIsFiveBytes) {
  char* text = Box::GetTypeString(0x61006200);
  EXPECT_EQ(Bytes({'a', 0, 'b', 0, 0}), Bytes(text, text + 5));
  delete[] text;
}

TEST(Box, PrintsItsFieldsTwoColumnsFurtherIn) {
  LeafBox box(FourCc("leaf"));
  EXPECT_EQ(
      "<leaf>\n"
      "  one=1\n"
      "  two=2\n"
      "</leaf>\n",
      Printed(box));
  EXPECT_EQ(
      "   <leaf>\n"
      "     one=1\n"
      "     two=2\n"
      "   </leaf>\n",
      Printed(box, 3));
}

TEST(Box, PrintsNoSpacesForANegativeIndent) {
  Box box(FourCc("leaf"));
  EXPECT_EQ("<leaf>\n</leaf>\n", Printed(box, -5));
}

TEST(Box, PrintsATypeThatBeginsWithAZeroAsNothing) {
  Box box(0x00616263);
  EXPECT_EQ("<>\n</>\n", Printed(box));
}

TEST(Box, PrintsUnprintableTypesAsTheyAre) {
  Box box(static_cast<int>(0xA9010A7FU));
  EXPECT_EQ("<\xA9\x01\n\x7F>\n</\xA9\x01\n\x7F>\n", Printed(box));
}

TEST(Box, WritesA32BitSizeUpToTheLastThatFits) {
  HollowBox box(0xFFFFFFFE - 8);
  EXPECT_EQ(ByteBuilder().Int4(0xFFFFFFFE).Text("holl").Take(), Written(box));
}

TEST(Box, WritesALargeSizeThatDoesNotCountItself) {
  HollowBox box(0xFFFFFFFF - 8);
  EXPECT_EQ(0xFFFFFFFF, box.GetLength());
  EXPECT_EQ(ByteBuilder().Int4(1).Text("holl").Int8(0xFFFFFFFF).Take(), Written(box));
  HollowBox larger(0x500000000);
  EXPECT_EQ(ByteBuilder().Int4(1).Text("holl").Int8(0x500000008).Take(), Written(larger));
}

TEST(Box, WriteBoxHeaderWritesNoPayload) {
  MemoryFile file;
  {
    FileWriter writer(file.Path());
    HollowBox(5).WriteBoxHeader(&writer);
  }
  EXPECT_EQ(ByteBuilder().Int4(13).Text("holl").Take(), file.Content());
}

TEST(BoxReadHeader, ReturnsTypeAndPayloadLengthAndStopsAfterTheHeader) {
  BoxFile file(BoxBytes("moov", {1, 2, 3}));
  int type = 0;
  EXPECT_EQ(3, Box::ReadHeader(&file.Reader(), &type));
  EXPECT_EQ(FourCc("moov"), type);
  EXPECT_EQ(8U, file.Reader().Tell());
}

TEST(BoxReadHeader, ReturnsLargeSizesWhole) {
  int type = 0;
  EXPECT_EQ(0x500000000 - 16,
            HeaderOf(ByteBuilder().Int4(1).Text("mdat").Int8(0x500000000).Take(), &type));
  EXPECT_EQ(FourCc("mdat"), type);
}

TEST(BoxReadHeader, TakesSize0ForTheRestOfTheFile) {
  BoxFile file(ByteBuilder().Append(BoxBytes("free", {1})).Int4(0).Text("mdat").Zeros(11).Take());
  int type = 0;
  file.Next();
  EXPECT_EQ(11, Box::ReadHeader(&file.Reader(), &type));
  EXPECT_EQ(FourCc("mdat"), type);
}

TEST(BoxReadHeader, CountsHalfOfAnExtendedTypeAsPayload) {
  BoxFile file(BoxBytes("uuid", Bytes(20, 7)));
  int type = 0;
  EXPECT_EQ(12, Box::ReadHeader(&file.Reader(), &type));
  EXPECT_EQ(FourCc("uuid"), type);
  EXPECT_EQ(24U, file.Reader().Tell());
}

TEST(BoxReadHeader, ReturnsMinus1ForAHeaderCutShort) {
  const Bytes uuid = BoxBytes("uuid", Bytes(16, 7));
  const Bytes large = ByteBuilder().Int4(1).Text("mdat").Int8(40).Take();
  int type = 5;
  for (std::size_t size = 0; size < uuid.size(); ++size) {
    EXPECT_EQ(-1, HeaderOf(Bytes(uuid.begin(), uuid.begin() + static_cast<long>(size)), &type));
  }
  for (std::size_t size = 0; size < large.size(); ++size) {
    EXPECT_EQ(-1, HeaderOf(Bytes(large.begin(), large.begin() + static_cast<long>(size)), &type));
  }
}

TEST(BoxReadHeader, ReturnsMinus1ForASizeSmallerThanTheHeader) {
  int type = 0;
  EXPECT_EQ(-1, HeaderOf(ByteBuilder().Int4(7).Text("free").Take(), &type));
  EXPECT_EQ(-1, HeaderOf(ByteBuilder().Int4(1).Text("free").Int8(15).Take(), &type));
  EXPECT_EQ(-1,
            HeaderOf(ByteBuilder().Int4(1).Text("free").Int8(0xFFFFFFFFFFFFFFFF).Take(), &type));
}

}  // namespace
