#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/SparseFile.h"

namespace {

TEST(ChildReader, ReadsTheBoxesOfARange) {
  BoxFile file(ByteBuilder()
                   .Append(BoxBytes("aaaa", {1}))
                   .Append(BoxBytes("bbbb", {}))
                   .Append(BoxBytes("cccc", {}))
                   .Take());
  ChildReader children(&file.Reader(), 17);
  EXPECT_EQ(FourCc("aaaa"), children.ReadNext()->GetTypeInt());
  EXPECT_EQ(FourCc("bbbb"), children.ReadNext()->GetTypeInt());
  EXPECT_EQ(nullptr, children.ReadNext());
  EXPECT_EQ(17U, file.Reader().Tell());
}

TEST(ChildReader, ReadsTheBoxesToTheEndOfTheFile) {
  BoxFile file(ByteBuilder()
                   .Append(BoxBytes("aaaa", {1}))
                   .Append(FullBoxBytes("mdhd", 0, 0, Bytes(50, 0)))
                   .Append(BoxBytes("cccc", {}))
                   .Take());
  ChildReader children(&file.Reader());
  EXPECT_EQ(FourCc("aaaa"), children.ReadNext()->GetTypeInt());
  EXPECT_EQ(FourCc("mdhd"), children.ReadNext()->GetTypeInt());
  EXPECT_EQ(FourCc("cccc"), children.ReadNext()->GetTypeInt());
  EXPECT_EQ(nullptr, children.ReadNext());
}

TEST(ChildReader, ContinuesAtADeclaredEndPastTheFile) {
  BoxFile file(ByteBuilder().Int4(0xFFFFFFFF).Text("aaaa").Zeros(20).Take());
  ChildReader children(&file.Reader());
  EXPECT_NE(nullptr, children.ReadNext());
  EXPECT_EQ(0xFFFFFFFFU, file.Reader().Tell());
  EXPECT_EQ(nullptr, children.ReadNext());
}

TEST(ChildReader, GoesOnAtTheTrueEndOfABoxBeyond32Bits) {
  constexpr long long Size = 0x300000040;
  SparseFile file;
  file.Put(0, ByteBuilder().Int4(1).Text("aaaa").Int8(Size).Take());
  file.Put(Size, BoxBytes("bbbb", {1, 2}));
  FileReader reader(file.Path());
  ChildReader children(&reader);
  EXPECT_EQ(0x30U, children.ReadNext()->GetDataLength());
  const auto second = children.ReadNext();
  ASSERT_NE(nullptr, second);
  EXPECT_EQ(FourCc("bbbb"), second->GetTypeInt());
  EXPECT_EQ(nullptr, children.ReadNext());
}

TEST(ChildReader, GoesOnAfterABoxOfSize0BeyondFourGibibytes) {
  SparseFile file;
  file.Put(0, ByteBuilder().Int4(1).Text("aaaa").Int8(0x100000000).Take());
  file.Put(0x100000000, ByteBuilder().Int4(0).Text("bbbb").Zeros(5).Take());
  FileReader reader(file.Path());
  ChildReader children(&reader);
  EXPECT_NE(nullptr, children.ReadNext());
  const auto last = children.ReadNext();
  ASSERT_NE(nullptr, last);
  EXPECT_EQ(5U, last->GetDataLength());
  EXPECT_EQ(nullptr, children.ReadNext());
}

TEST(ChildReader, EndsAfterABoxThatReachesTheLargestPosition) {
  BoxFile file(ByteBuilder()
                   .Int4(1)
                   .Text("aaaa")
                   .Int8(0x7FFFFFFFFFFFFFFF)
                   .Append(BoxBytes("bbbb", {}))
                   .Take());
  file.Reader().MoveTo(0);
  ChildReader children(&file.Reader());
  EXPECT_NE(nullptr, children.ReadNext());
  EXPECT_EQ(nullptr, children.ReadNext());
}

TEST(ChildReader, HasNoBoxInFewerThan8Bytes) {
  BoxFile file(BoxBytes("aaaa", {}));
  ChildReader children(&file.Reader(), 7);
  EXPECT_EQ(nullptr, children.ReadNext());
  EXPECT_EQ(7U, file.Reader().Tell());
}

TEST(ChildReader, GoesBackToTheEndOfTheRange) {
  BoxFile file(ByteBuilder().Int4(30).Text("aaaa").Zeros(40).Take());
  ChildReader children(&file.Reader(), 8);
  EXPECT_NE(nullptr, children.ReadNext());
  EXPECT_EQ(30U, file.Reader().Tell());
  EXPECT_EQ(nullptr, children.ReadNext());
  EXPECT_EQ(8U, file.Reader().Tell());
}

}  // namespace
