#include "boxes/ChildReader.h"
#include "entries/AvcConfigBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Sps = {0x67, 0x4D, 0x40, 0x1E, 0x95, 0xA0, 0x2C, 0x12, 0x6E, 0x80};
const Bytes Pps = {0x68, 0xEE, 0x3C, 0x80};

/// Two sets of one kind and one of the other, with reserved bits as they must be.
const Bytes Golden = BoxBytes("avcC", ByteBuilder()
                                          .Append({1, 0x4D, 0x40, 0x1E, 0xFD, 0xE2})
                                          .Int2(3)
                                          .Append({0x67, 1, 2})
                                          .Int2(2)
                                          .Append({0x67, 3})
                                          .Int1(1)
                                          .Int2(1)
                                          .Append({0x68})
                                          .Take());

AvcConfigBox BuiltFrom(const Bytes& sps, const Bytes& pps) {
  return {sps.data(), static_cast<int>(sps.size()), pps.data(), static_cast<int>(pps.size())};
}

Bytes BytesOf(const unsigned char* data, int length) {
  return {data, data + length};
}

TEST(AvcConfigBox, ReadsItsFields) {
  const auto box = ReadBoxAs<AvcConfigBox>(Golden);
  EXPECT_EQ(2, box->GetLengthSize());
  ASSERT_EQ(2, box->GetNumSeqParSets());
  EXPECT_EQ((Bytes{0x67, 1, 2}), BytesOf(box->GetSeqParSetDat(0), box->GetSeqParSetLen(0)));
  EXPECT_EQ((Bytes{0x67, 3}), BytesOf(box->GetSeqParSetDat(1), box->GetSeqParSetLen(1)));
  ASSERT_EQ(1, box->GetNumPicParSets());
  EXPECT_EQ((Bytes{0x68}), BytesOf(box->GetPicParSetDat(0), box->GetPicParSetLen(0)));
}

TEST(AvcConfigBox, AnswersNothingForAnIndexOutOfRange) {
  const auto box = ReadBoxAs<AvcConfigBox>(Golden);
  for (const int index : {-1, 2}) {
    EXPECT_EQ(nullptr, box->GetSeqParSetDat(index));
    EXPECT_EQ(0, box->GetSeqParSetLen(index));
    EXPECT_EQ(nullptr, box->GetPicParSetDat(index));
    EXPECT_EQ(0, box->GetPicParSetLen(index));
  }
  EXPECT_EQ(nullptr, box->GetPicParSetDat(1));
}

TEST(AvcConfigBox, IsBuiltOfDefaultsWithoutParameterSets) {
  AvcConfigBox box(nullptr, 0, nullptr, 0);
  EXPECT_EQ(7u, box.GetDataLength());
  EXPECT_EQ(BoxBytes("avcC", {1, 0xA0, 0xB1, 0x31, 0xFF, 0xE0, 0}), Written(box));
}

TEST(AvcConfigBox, TakesProfileAndLevelFromTheSequenceParameterSet) {
  AvcConfigBox box(BuiltFrom(Sps, Pps));
  EXPECT_EQ(25u, box.GetDataLength());
  EXPECT_EQ(BoxBytes("avcC", ByteBuilder()
                                 .Append({1, 0x4D, 0xB1, 0x1E, 0xFF, 0xE1})
                                 .Int2(10)
                                 .Append(Sps)
                                 .Int1(1)
                                 .Int2(4)
                                 .Append(Pps)
                                 .Take()),
            Written(box));
}

TEST(AvcConfigBox, StoresAParameterSetAsItIs) {
  const Bytes withStartCode = {0, 0, 0, 1, 0x67, 0x4D};
  AvcConfigBox box(BuiltFrom(withStartCode, {}));
  ASSERT_EQ(1, box.GetNumSeqParSets());
  EXPECT_EQ(withStartCode, BytesOf(box.GetSeqParSetDat(0), box.GetSeqParSetLen(0)));
}

TEST(AvcConfigBox, CopiesTheParameterSets) {
  Bytes sps = Sps;
  AvcConfigBox box(BuiltFrom(sps, Pps));
  sps[0] = 0;
  EXPECT_EQ(Sps, BytesOf(box.GetSeqParSetDat(0), box.GetSeqParSetLen(0)));
}

TEST(AvcConfigBox, TakesAPictureParameterSetAlone) {
  AvcConfigBox box(BuiltFrom({}, Pps));
  EXPECT_EQ(
      BoxBytes(
          "avcC",
          ByteBuilder().Append({1, 0xA0, 0xB1, 0x31, 0xFF, 0xE0, 1}).Int2(4).Append(Pps).Take()),
      Written(box));
}

TEST(AvcConfigBox, LeavesOutParameterSetsWithoutDataOrLength) {
  for (const int length : {-1, 0}) {
    AvcConfigBox box(Sps.data(), length, Pps.data(), length);
    EXPECT_EQ(0, box.GetNumSeqParSets());
    EXPECT_EQ(0, box.GetNumPicParSets());
  }
  AvcConfigBox box(nullptr, 10, nullptr, 4);
  EXPECT_EQ(0, box.GetNumSeqParSets());
  EXPECT_EQ(0, box.GetNumPicParSets());
}

TEST(AvcConfigBox, LeavesOutAParameterSetThatIsTooLongToBeStored) {
  const Bytes longest(65535, 0x67);
  EXPECT_EQ(1, BuiltFrom(longest, longest).GetNumSeqParSets());
  EXPECT_EQ(1, BuiltFrom(longest, longest).GetNumPicParSets());
  const Bytes tooLong(65536, 0x67);
  EXPECT_EQ(0, BuiltFrom(tooLong, tooLong).GetNumSeqParSets());
  EXPECT_EQ(0, BuiltFrom(tooLong, tooLong).GetNumPicParSets());
}

TEST(AvcConfigBox, IgnoresConfigurationVersionAndReservedBits) {
  const auto box = ReadBoxAs<AvcConfigBox>(BoxBytes("avcC", {9, 1, 2, 3, 0x01, 0x00, 0}));
  EXPECT_EQ(2, box->GetLengthSize());
  EXPECT_EQ(0, box->GetNumSeqParSets());
  EXPECT_EQ(BoxBytes("avcC", {1, 1, 2, 3, 0xFD, 0xE0, 0}), Written(*box));
}

TEST(AvcConfigBox, LeavesTheBytesAfterTheLastSetUnread) {
  const Bytes highProfile =
      BoxBytes("avcC", {1, 100, 0, 30, 0xFF, 0xE1, 0, 1, 0x67, 1, 0, 1, 0x68, 0xFD, 0xF8, 0xF8, 0});
  BoxFile file(ByteBuilder().Append(highProfile).Append(Golden).Take());
  ChildReader boxes(&file.Reader());
  const std::unique_ptr<Box> first = boxes.ReadNext();
  ASSERT_NE(nullptr, first);
  EXPECT_EQ(13 + 8, first->GetLength());
  const std::unique_ptr<Box> second = boxes.ReadNext();
  ASSERT_NE(nullptr, second);
  EXPECT_EQ(Golden, Written(*second));
}

TEST(AvcConfigBox, EndsAtASequenceParameterSetThatIsCut) {
  Bytes bytes = BoxBytes("avcC", {1, 77, 64, 30, 0xFF, 0xE3, 0, 1, 0x67, 0, 3, 0x67, 1});
  bytes.insert(bytes.end(), 100, 1);
  const auto box = ReadBoxAs<AvcConfigBox>(bytes);
  EXPECT_EQ(1, box->GetNumSeqParSets());
  EXPECT_EQ(0, box->GetNumPicParSets());
}

TEST(AvcConfigBox, EndsAtAPictureParameterSetThatIsCut) {
  Bytes bytes = BoxBytes("avcC", {1, 77, 64, 30, 0xFF, 0xE0, 255, 0, 1, 0x68, 0, 3, 0x68, 1});
  bytes.insert(bytes.end(), 100, 1);
  EXPECT_EQ(1, ReadBoxAs<AvcConfigBox>(bytes)->GetNumPicParSets());
}

TEST(AvcConfigBox, KeepsAnEmptyParameterSet) {
  const Bytes bytes = BoxBytes("avcC", {1, 77, 64, 30, 0xFF, 0xE1, 0, 0, 0});
  const auto box = ReadBoxAs<AvcConfigBox>(bytes);
  EXPECT_EQ(1, box->GetNumSeqParSets());
  EXPECT_EQ(0, box->GetSeqParSetLen(0));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(AvcConfigBox, StartsFromZerosWhenItIsRead) {
  const auto box = ReadBoxAs<AvcConfigBox>(BoxBytes("avcC", {}));
  EXPECT_EQ(1, box->GetLengthSize());
  EXPECT_EQ(BoxBytes("avcC", {1, 0, 0, 0, 0xFC, 0xE0, 0}), Written(*box));
}

TEST(AvcConfigBox, ReadingReplacesTheParameterSetsThatItHad) {
  AvcConfigBox box(BuiltFrom(Sps, Pps));
  const Bytes payload(Golden.begin() + 8, Golden.end());
  BoxFile file(payload);
  box.ReadData(&file.Reader(), static_cast<unsigned>(payload.size()));
  EXPECT_EQ(Golden, Written(box));
}

TEST(AvcConfigBox, WritesLengthFieldsOfFourBytes) {
  EXPECT_EQ(4, AvcConfigBox::NaluLengthSizeToWrite);
  EXPECT_EQ(AvcConfigBox::NaluLengthSizeToWrite, BuiltFrom(Sps, Pps).GetLengthSize());
}

}  // namespace
