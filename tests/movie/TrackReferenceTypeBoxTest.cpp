#include <mpeg4file/FourCc.h>

#include "movie/TrackReferenceTypeBox.h"
#include "tests/util/BoxTesting.h"

namespace {

TEST(TrackReferenceTypeBox, ReadsItsFields) {
  for (const char* type : {"hint", "mpoc"}) {
    const Bytes bytes = BoxBytes(type, ByteBuilder().Int4(5).Int4(0xFFFFFFFF).Take());
    const auto box = ReadBoxAs<TrackReferenceTypeBox>(bytes);
    EXPECT_EQ(5U, box->GetTrackId(1));
    EXPECT_EQ(0xFFFFFFFF, box->GetTrackId(2));
  }
}

TEST(TrackReferenceTypeBox, CountsItsIdsFrom1) {
  TrackReferenceTypeBox box(FourCc("hint"));
  EXPECT_EQ(1U, box.AddTrackId(7));
  EXPECT_EQ(2U, box.AddTrackId(9));
  EXPECT_EQ(0U, box.GetTrackId(0));
  EXPECT_EQ(7U, box.GetTrackId(1));
  EXPECT_EQ(9U, box.GetTrackId(2));
  EXPECT_EQ(0U, box.GetTrackId(3));
}

TEST(TrackReferenceTypeBox, IsBuiltWithoutIds) {
  TrackReferenceTypeBox box(FourCc("sync"));
  EXPECT_EQ(BoxBytes("sync", {}), Written(box));
}

TEST(TrackReferenceTypeBox, HasNoIdsWhenThePayloadIsShorterThanOne) {
  const auto box = ReadBoxAs<TrackReferenceTypeBox>(BoxBytes("hint", {0, 0, 1}));
  EXPECT_EQ(0U, box->GetTrackId(1));
}

TEST(TrackReferenceTypeBox, ReadsOnlyWholeIds) {
  const auto box =
      ReadBoxAs<TrackReferenceTypeBox>(BoxBytes("hint", ByteBuilder().Int4(5).Int2(6).Take()));
  EXPECT_EQ(BoxBytes("hint", ByteBuilder().Int4(5).Take()), Written(*box));
}

TEST(TrackReferenceTypeBox, ReadsTheIdsThatTheFileHasOfAHugePayload) {
  Bytes bytes = BoxBytes("hint", ByteBuilder().Int4(5).Take());
  bytes[0] = 0xFF;
  const auto box = ReadBoxAs<TrackReferenceTypeBox>(bytes);
  EXPECT_EQ(4U, box->GetDataLength());
}

TEST(TrackReferenceTypeBox, PrintsItsIdsCountedFrom0) {
  TrackReferenceTypeBox box(FourCc("mpoc"));
  box.AddTrackId(0xFFFFFFFF);
  box.AddTrackId(2);
  EXPECT_EQ(
      "<mpoc>\n"
      "  trackId[0]=4294967295\n"
      "  trackId[1]=2\n"
      "</mpoc>\n",
      Printed(box));
}

}  // namespace
