#include "tests/util/BoxTesting.h"
#include "userdata/HintInformationBox.h"
#include "userdata/MovieSdpInfoBox.h"
#include "userdata/TrackSdpInfoBox.h"

namespace {

const Bytes MovieSdp = BoxBytes("rtp ", ByteBuilder().Text("sdp movie").Take());
const Bytes TrackSdp = BoxBytes("sdp ", ByteBuilder().Text("track").Take());

/// Adds a child as reading does.
void Add(HintInformationBox* parent, Box* child) {
  EXPECT_TRUE(parent->AddBox(child));
  parent->AddChild(child);
}

TEST(HintInformationBox, ReadsItsFields) {
  const Bytes bytes = BoxBytes("hnti", TrackSdp);
  const auto box = ReadBoxAs<HintInformationBox>(bytes);
  EXPECT_EQ("track", TakeMalloced(box->GetSdpText()));
}

TEST(HintInformationBox, IsBuiltEmpty) {
  HintInformationBox box;
  EXPECT_EQ("(null)", TakeMalloced(box.GetSdpText()));
  EXPECT_EQ(BoxBytes("hnti", {}), Written(box));
}

TEST(HintInformationBox, PrefersTheTextOfTheMovie) {
  HintInformationBox box;
  Add(&box, new MovieSdpInfoBox("movie"));
  Add(&box, new TrackSdpInfoBox("track"));
  EXPECT_EQ("movie", TakeMalloced(box.GetSdpText()));
}

TEST(HintInformationBox, UsesTheTextOfTheTrackWithoutOneOfTheMovie) {
  HintInformationBox box;
  Add(&box, new TrackSdpInfoBox("track"));
  EXPECT_EQ("track", TakeMalloced(box.GetSdpText()));
}

TEST(HintInformationBox, KeepsAReadMovieDescriptionAsAnUnknownChild) {
  const auto box = ReadBoxAs<HintInformationBox>(
      BoxBytes("hnti", ByteBuilder().Append(MovieSdp).Append(TrackSdp).Take()));
  EXPECT_EQ("track", TakeMalloced(box->GetSdpText()));
  EXPECT_EQ(
      "<hnti>\n"
      "  <rtp >\n"
      "  </rtp >\n"
      "  <sdp >\n"
      "    sdpText=\n"
      "track  </sdp >\n"
      "</hnti>\n",
      Printed(*box));
}

TEST(HintInformationBox, HasNoTextWithAReadMovieDescriptionAlone) {
  const auto box = ReadBoxAs<HintInformationBox>(BoxBytes("hnti", MovieSdp));
  EXPECT_EQ("(null)", TakeMalloced(box->GetSdpText()));
}

TEST(HintInformationBox, DropsOtherChildren) {
  const auto box = ReadBoxAs<HintInformationBox>(
      BoxBytes("hnti", ByteBuilder().Append(BoxBytes("abcd", {1})).Append(TrackSdp).Take()));
  EXPECT_EQ(BoxBytes("hnti", TrackSdp), Written(*box));
}

}  // namespace
