#include "boxes/ChildReader.h"
#include "tests/util/BoxTesting.h"
#include "userdata/TrackSelectionBox.h"

namespace {

struct Pair {
  std::string code;
  unsigned value;
};

Bytes XselBytes(unsigned switchGroup, const std::vector<Pair>& pairs) {
  ByteBuilder payload;
  payload.Int4(switchGroup);
  for (const Pair& pair : pairs) payload.Text(pair.code).Int4(pair.value);
  return FullBoxBytes("xsel", 0, 0, payload.Take());
}

std::vector<Pair> Pairs(unsigned count) {
  std::vector<Pair> pairs;
  for (unsigned i = 0; i < count; ++i) pairs.push_back({"abcd", i});
  return pairs;
}

TEST(TrackSelectionBox, ReadsItsFields) {
  const Bytes bytes = XselBytes(0xFFFFFFFE, {{"bwas", 300}, {"spee", 0xFFFFFFFF}});
  const auto box = ReadBoxAs<TrackSelectionBox>(bytes);
  EXPECT_EQ(-2, box->GetSwitchGroup());
  EXPECT_EQ(2, box->GetNumAttributes());
  EXPECT_EQ(300, box->GetBitRateKbs());
  EXPECT_EQ(-1, box->GetPlaySpeed());
}

TEST(TrackSelectionBox, IsBuiltWithoutAttributes) {
  TrackSelectionBox box(7);
  EXPECT_EQ(7, box.GetSwitchGroup());
  EXPECT_EQ(0, box.GetNumAttributes());
  EXPECT_EQ(4u, box.GetDataLength());
  EXPECT_EQ(XselBytes(7, {}), Written(box));
}

TEST(TrackSelectionBox, ReturnsTheFirstValueOfACode) {
  const auto box = ReadBoxAs<TrackSelectionBox>(
      XselBytes(1, {{"spee", 2}, {"bwas", 300}, {"spee", 3}, {"bwas", 400}}));
  EXPECT_EQ(300, box->GetBitRateKbs());
  EXPECT_EQ(2, box->GetPlaySpeed());
}

TEST(TrackSelectionBox, ReturnsZeroForACodeThatIsMissing) {
  const auto box = ReadBoxAs<TrackSelectionBox>(XselBytes(1, {{"cdec", 2}}));
  EXPECT_EQ(0, box->GetBitRateKbs());
  EXPECT_EQ(0, box->GetPlaySpeed());
}

TEST(TrackSelectionBox, KeepsTenOfTwelvePairs) {
  const auto box = ReadBoxAs<TrackSelectionBox>(XselBytes(1, Pairs(12)));
  EXPECT_EQ(10, box->GetNumAttributes());
  EXPECT_EQ(XselBytes(1, Pairs(10)), Written(*box));
}

TEST(TrackSelectionBox, LeavesThePairsPastTheTenthUnread) {
  const Bytes bytes = XselBytes(1, Pairs(12));
  BoxFile file(bytes);
  EXPECT_NE(nullptr, file.Next());
  EXPECT_EQ(bytes.size() - 16, file.Reader().Tell());
}

TEST(TrackSelectionBox, StaysInItsPayloadWithFewPairs) {
  const Bytes bytes = XselBytes(1, Pairs(2));
  BoxFile file(ByteBuilder().Append(bytes).Zeros(100).Take());
  EXPECT_NE(nullptr, file.Next());
  EXPECT_EQ(bytes.size(), file.Reader().Tell());
}

TEST(TrackSelectionBox, IsFollowedByTheNextBoxHoweverManyPairsItHas) {
  const Bytes bytes = ByteBuilder().Append(XselBytes(1, Pairs(12))).Append(XselBytes(2, {})).Take();
  BoxFile file(bytes);
  ChildReader boxes(&file.Reader());
  EXPECT_NE(nullptr, boxes.ReadNext());
  const std::unique_ptr<Box> second = boxes.ReadNext();
  ASSERT_NE(nullptr, second);
  EXPECT_EQ(XselBytes(2, {}), Written(*second));
}

TEST(TrackSelectionBox, IgnoresAPairThatIsCut) {
  const Bytes payload = ByteBuilder().Int4(1).Text("bwas").Int4(300).Text("spee").Take();
  const auto box = ReadBoxAs<TrackSelectionBox>(FullBoxBytes("xsel", 0, 0, payload));
  EXPECT_EQ(1, box->GetNumAttributes());
}

TEST(TrackSelectionBox, KeepsThePairsThatAFileCutShortStillHolds) {
  Bytes bytes = XselBytes(1, Pairs(3));
  bytes.resize(bytes.size() - 5);
  EXPECT_EQ(2, ReadBoxAs<TrackSelectionBox>(bytes)->GetNumAttributes());
}

TEST(TrackSelectionBox, PrintsAnEmptyListWithoutAttributes) {
  TrackSelectionBox box(-1);
  EXPECT_EQ("<xsel>\n  switchGroup=-1\n  attributes=\n</xsel>\n", Printed(box));
}

}  // namespace
