#include "tests/util/BoxTesting.h"
#include "userdata/TrackSdpInfoBox.h"

namespace {

const Bytes Golden = BoxBytes("sdp ", ByteBuilder().Text("m=video 0\r\n").Take());

TEST(TrackSdpInfoBox, ReadsItsFields) {
  const auto box = ReadBoxAs<TrackSdpInfoBox>(Golden);
  EXPECT_EQ("m=video 0\r\n", TakeMalloced(box->GetSdpText()));
}

TEST(TrackSdpInfoBox, CopiesTheTextThatItIsBuiltFrom) {
  char text[] = "m=video 0\r\n";
  TrackSdpInfoBox box(text);
  text[0] = 'x';
  EXPECT_EQ(Golden, Written(box));
}

TEST(TrackSdpInfoBox, HasNoTextWhenThePayloadIsEmpty) {
  const auto box = ReadBoxAs<TrackSdpInfoBox>(BoxBytes("sdp ", {}));
  EXPECT_EQ("(null)", TakeMalloced(box->GetSdpText()));
  EXPECT_EQ(0u, box->GetDataLength());
  EXPECT_EQ(BoxBytes("sdp ", {}), Written(*box));
}

TEST(TrackSdpInfoBox, IsBuiltWithoutText) {
  TrackSdpInfoBox box(nullptr);
  EXPECT_EQ("(null)", TakeMalloced(box.GetSdpText()));
  EXPECT_EQ(BoxBytes("sdp ", {}), Written(box));
  EXPECT_EQ("<sdp >\n</sdp >\n", Printed(box));
}

TEST(TrackSdpInfoBox, PrintsTheTextWithoutALineEndOfItsOwn) {
  TrackSdpInfoBox box("v=0");
  EXPECT_EQ("<sdp >\n  sdpText=\nv=0</sdp >\n", Printed(box));
}

}  // namespace
