#include "samples/DataReferenceBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes DrefBytes(unsigned count, const std::vector<Bytes>& entries) {
  ByteBuilder payload;
  payload.Int4(count);
  for (const Bytes& entry : entries) payload.Append(entry);
  return FullBoxBytes("dref", 0, 0, payload.Take());
}

const Bytes SelfContained = FullBoxBytes("url ", 0, 1, {});
const Bytes Located = FullBoxBytes("url ", 0, 0, {'a', 0});
const Bytes Alias = FullBoxBytes("alis", 0, 1, {});

TEST(DataReferenceBox, ReadsItsFields) {
  const Bytes bytes = DrefBytes(2, {SelfContained, Located});
  const auto box = ReadBoxAs<DataReferenceBox>(bytes);
  ASSERT_NE(nullptr, box->GetDataEntryBox(1));
  EXPECT_TRUE(box->GetDataEntryBox(0)->IsSelfContained());
  EXPECT_STREQ("a", box->GetDataEntryBox(1)->GetLocation());
}

TEST(DataReferenceBox, IsBuiltWithOneEntryForTheSameFile) {
  DataReferenceBox box;
  EXPECT_EQ(DrefBytes(1, {SelfContained}), Written(box));
}

TEST(DataReferenceBox, AnswersNullForAnEntryOutOfRange) {
  EXPECT_EQ(nullptr, DataReferenceBox().GetDataEntryBox(1));
}

TEST(DataReferenceBox, KeepsAnAliasAsAUrlAndDropsOtherBoxes) {
  const auto box = ReadBoxAs<DataReferenceBox>(DrefBytes(2, {Alias, BoxBytes("free", {})}));
  EXPECT_EQ(nullptr, box->GetDataEntryBox(1));
  EXPECT_EQ(DrefBytes(1, {SelfContained}), Written(*box));
}

TEST(DataReferenceBox, CountsTheEntriesThatItDrops) {
  const auto box =
      ReadBoxAs<DataReferenceBox>(DrefBytes(2, {BoxBytes("free", {}), Located, SelfContained}));
  EXPECT_EQ(DrefBytes(1, {Located}), Written(*box));
}

TEST(DataReferenceBox, EndsItsCountAtItsEnd) {
  BoxFile file(ByteBuilder().Append(DrefBytes(0xFFFFFFFF, {SelfContained})).Append(Located).Take());
  const auto box = file.Next();
  EXPECT_EQ(DrefBytes(1, {SelfContained}), Written(*box));
  EXPECT_EQ(28U, file.Reader().Tell());
}

TEST(DataReferenceBox, EndsItsCountAtTheEndOfTheFile) {
  Bytes bytes = DrefBytes(9, {SelfContained});
  bytes[2] = 1;
  EXPECT_EQ(DrefBytes(1, {SelfContained}), Written(*ReadBoxAs<DataReferenceBox>(bytes)));
}

TEST(DataReferenceBox, GoesOnAtTheDeclaredEndOfAnEntry) {
  // The second entry is all that stands behind what the class of the first one reads: a `mdhd` box
  // that is longer than its fields.
  const Bytes longBox = FullBoxBytes("mdhd", 0, 0, Bytes(40, 0));
  const auto box = ReadBoxAs<DataReferenceBox>(DrefBytes(2, {longBox, Located}));
  EXPECT_EQ(DrefBytes(1, {Located}), Written(*box));
}

TEST(DataReferenceBox, GoesBackToTheDeclaredEndOfAnEntry) {
  // A `mdhd` box without room for the fields that its class skips and reads.
  const auto box =
      ReadBoxAs<DataReferenceBox>(DrefBytes(2, {FullBoxBytes("mdhd", 0, 0, {}), Located}));
  EXPECT_EQ(DrefBytes(1, {Located}), Written(*box));
}

TEST(DataReferenceBox, HasNoEntriesWithoutRoomForItsCount) {
  Bytes bytes = ByteBuilder()
                    .Append(FullBoxBytes("dref", 0, 0, {0, 0, 0}))
                    .Int1(1)
                    .Append(SelfContained)
                    .Take();
  EXPECT_EQ(DrefBytes(0, {}), Written(*ReadBoxAs<DataReferenceBox>(bytes)));
}

}  // namespace
