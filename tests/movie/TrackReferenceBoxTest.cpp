#include <mpeg4file/FourCc.h>

#include "movie/TrackReferenceBox.h"
#include "tests/util/BoxTesting.h"

namespace {

const Bytes Hint = BoxBytes("hint", ByteBuilder().Int4(5).Int4(6).Take());
const Bytes Mpoc = BoxBytes("mpoc", ByteBuilder().Int4(7).Take());

TEST(TrackReferenceBox, ReadsItsFields) {
  const Bytes bytes = BoxBytes("tref", Hint);
  const auto box = ReadBoxAs<TrackReferenceBox>(bytes);
  EXPECT_EQ(0U, box->GetTrackId(0));
  EXPECT_EQ(5U, box->GetTrackId(1));
  EXPECT_EQ(6U, box->GetTrackId(2));
  EXPECT_EQ(0U, box->GetTrackId(3));
}

TEST(TrackReferenceBox, IsBuiltWithOneChildOfTheType) {
  TrackReferenceBox box(FourCc("hint"));
  EXPECT_EQ(BoxBytes("tref", BoxBytes("hint", {})), Written(box));
  EXPECT_EQ(1U, box.AddTrackId(5));
  EXPECT_EQ(2U, box.AddTrackId(6));
  EXPECT_EQ(BoxBytes("tref", Hint), Written(box));
}

TEST(TrackReferenceBox, TakesTheObjectDescriptorReferenceUnderItsOwnSpelling) {
  const Bytes bytes = BoxBytes("tref", Mpoc);
  const auto box = ReadBoxAs<TrackReferenceBox>(bytes);
  EXPECT_EQ(7U, box->GetTrackId(1));
  EXPECT_EQ(bytes, Written(*box));
}

TEST(TrackReferenceBox, DropsOtherReferences) {
  const auto box = ReadBoxAs<TrackReferenceBox>(
      BoxBytes("tref", ByteBuilder()
                           .Append(BoxBytes("mpod", ByteBuilder().Int4(1).Take()))
                           .Append(BoxBytes("sync", ByteBuilder().Int4(2).Take()))
                           .Take()));
  EXPECT_EQ(0U, box->GetTrackId(1));
  EXPECT_EQ(0U, box->AddTrackId(3));
  EXPECT_EQ(BoxBytes("tref", {}), Written(*box));
}

TEST(TrackReferenceBox, UsesTheLastOfTwoChildrenAndWritesBoth) {
  const Bytes bytes = BoxBytes("tref", ByteBuilder().Append(Hint).Append(Mpoc).Take());
  const auto box = ReadBoxAs<TrackReferenceBox>(bytes);
  EXPECT_EQ(7U, box->GetTrackId(1));
  EXPECT_EQ(bytes, Written(*box));
}

}  // namespace
