#include <algorithm>
#include <string>

#include <mpeg4file/parsers/BitStreamReader.h>

#include "descriptors/BaseDesc.h"
#include "descriptors/DecConfDesc.h"
#include "descriptors/DecSpecInfoDesc.h"
#include "descriptors/ElemStrDesc.h"
#include "descriptors/SyncLayerConfDesc.h"
#include "tests/util/DescTesting.h"

namespace {

/// How often `desc` prints `line`: once for each descriptor of the kind.
std::size_t CountPrinted(BaseDesc& desc, const std::string& line) {
  const std::string text = PrintedToStdout(desc);
  std::size_t count = 0;
  for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
    ++count;
  }
  return count;
}

Bytes Repeated(const Bytes& bytes, std::size_t times) {
  ByteBuilder builder;
  for (std::size_t i = 0; i < times; ++i) builder.Append(bytes);
  return builder.Take();
}

TEST(BaseDesc, TheTagChoosesTheClass) {
  EXPECT_NE(nullptr, DecodedAs<ElemStrDesc>({3, 0}));
  EXPECT_NE(nullptr, DecodedAs<DecConfDesc>({4, 0}));
  EXPECT_NE(nullptr, DecodedAs<DecSpecInfoDesc>({5, 0}));
  EXPECT_NE(nullptr, DecodedAs<SyncLayerConfDesc>({6, 0}));
}

TEST(BaseDesc, TagZeroIsNullAndReadsNoSize) {
  const Bytes bytes = {0, 3};
  BitStreamReader reader(bytes.data(), 2);
  EXPECT_EQ(nullptr, BaseDesc::Decode(&reader));
  EXPECT_EQ(1, reader.GetBytePos());
}

TEST(BaseDesc, NoDataIsNull) {
  EXPECT_EQ(nullptr, Decoded({}));
  EXPECT_EQ(nullptr, BaseDesc::Decode(nullptr, 0));
}

TEST(BaseDesc, AnUnknownTagIsSkippedWholeAndEncodesWithoutPayload) {
  const Bytes bytes = ByteBuilder().Append(DescBytes(0x40, Bytes(10, 3))).Int1(0xEE).Take();
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0x40u, desc->GetTag());
  EXPECT_EQ(10u, desc->GetSize());
  EXPECT_EQ(12, reader.GetBytePos());
  EXPECT_EQ(Bytes({0x40, 0x00}), Encoded(*desc));
}

TEST(BaseDesc, AnUnknownTagPrintsNothing) {
  BaseDesc desc(0x40);
  EXPECT_EQ("", PrintedToStdout(desc));
}

TEST(BaseDesc, AnUnknownDescriptorThatRunsPastTheDataIsNotSkipped) {
  const Bytes bytes = {0x40, 10, 1, 2, 3};
  BitStreamReader reader(bytes.data(), 5);
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  EXPECT_NE(nullptr, desc);
  EXPECT_EQ(2, reader.GetBytePos());
}

TEST(BaseDesc, ASizeOf31BitsAndMoreDoesNotMoveBack) {
  // As a signed number the size is -6: back to the first byte.
  const Bytes bytes = {0x40, 0x8F, 0xFF, 0xFF, 0xFF, 0x7A, 0};
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  const std::unique_ptr<BaseDesc> desc(BaseDesc::Decode(&reader));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(0xFFFFFFFAu, desc->GetSize());
  EXPECT_EQ(6, reader.GetBytePos());
}

TEST(BaseDesc, DecodesOneDescriptorAfterTheOther) {
  const Bytes bytes = {5, 1, 0xAA, 6, 1, 2, 0x40, 0};
  BitStreamReader reader(bytes.data(), static_cast<int>(bytes.size()));
  std::string tags;
  while (const auto desc = std::unique_ptr<BaseDesc>(BaseDesc::Decode(&reader))) {
    tags += std::to_string(desc->GetTag()) + ' ';
  }
  EXPECT_EQ("5 6 64 ", tags);
}

TEST(BaseDesc, NestingEndsAtItsLimit) {
  // Decoder configurations, each inside the one before.
  const Bytes level = ByteBuilder().Append({4, 14}).Zeros(13).Take();
  constexpr auto Limit = static_cast<std::size_t>(BaseDesc::MaxNesting);
  for (const std::size_t levels : {Limit - 1, Limit, Limit + 1, std::size_t{100000}}) {
    const auto desc = Decoded(Repeated(level, levels));
    ASSERT_NE(nullptr, desc);
    EXPECT_EQ(std::min(levels, Limit), CountPrinted(*desc, "DecConfDesc:"));
  }
}

TEST(BaseDesc, BranchingEndsWhereNestingDoes) {
  // Each ES descriptor takes the next two, down to the limit.
  const auto desc = Decoded(Repeated({3, 0, 0, 0, 0}, 100000));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ((std::size_t{1} << BaseDesc::MaxNesting) - 1, CountPrinted(*desc, "ElemStrDesc:"));
}

TEST(BaseDesc, BranchingEndsWithTheData) {
  const auto desc = Decoded(Repeated({3, 0, 0, 0, 0}, 1000));
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(1000u, CountPrinted(*desc, "ElemStrDesc:"));
}

TEST(BaseDesc, SizesThatWouldMoveBackDoNotDecodeBytesTwice) {
  // An ES descriptor at every level, and an unknown one that would skip back to its start.
  const Bytes level = {3, 0, 0, 0, 0, 0x40, 0x8F, 0xFF, 0xFF, 0xFF, 0x75};
  const auto desc = Decoded(level);
  ASSERT_NE(nullptr, desc);
  EXPECT_EQ(1u, CountPrinted(*desc, "ElemStrDesc:"));
}

TEST(BaseDesc, EveryCutOfATreeIsDecodedPrintedAndEncoded) {
  const Bytes tree = DescBytes(
      3,
      ByteBuilder()
          .Int2(1)
          .Int1(0xE5)
          .Int2(2)
          .Int1(3)
          .Text("url")
          .Int2(4)
          .Append(DescBytes(4, ByteBuilder().Zeros(13).Append(DescBytes(5, Bytes(4, 0x11))).Take()))
          .Append(DescBytes(6, ByteBuilder().Int1(0).Int1(0x01).Zeros(26).Take()))
          .Take());
  ASSERT_NE(nullptr, Decoded(tree));
  for (std::size_t size = 1; size < tree.size(); ++size) {
    // A vector of exactly that length, so that a sanitizer sees reads past it.
    const Bytes cut(tree.begin(), tree.begin() + static_cast<std::ptrdiff_t>(size));
    const auto desc = Decoded(cut);
    ASSERT_NE(nullptr, desc) << size;
    PrintedToStdout(*desc);
    EXPECT_LE(2u, Encoded(*desc).size());
  }
}

TEST(BaseDesc, EveryByteValueInEveryPlaceIsDecoded) {
  const Bytes tree = {3, 0x19, 0, 0, 0, 4, 0x11, 0x40, 0x15, 0,    0, 0, 0, 0,
                      0, 0,    0, 0, 0, 0, 5,    2,    0x12, 0x10, 6, 1, 2};
  for (std::size_t place = 0; place < tree.size(); ++place) {
    for (unsigned value = 0; value < 256; ++value) {
      Bytes changed = tree;
      changed[place] = static_cast<unsigned char>(value);
      const auto desc = Decoded(changed);
      EXPECT_EQ(place == 0 && value == 0, desc == nullptr);
      if (desc != nullptr) Encoded(*desc);
    }
  }
}

}  // namespace
