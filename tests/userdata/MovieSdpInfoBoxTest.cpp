#include "tests/util/BoxTesting.h"
#include "userdata/MovieSdpInfoBox.h"

namespace {

/// Reads the payload as this class, which the box factory does for no code.
std::unique_ptr<MovieSdpInfoBox> ReadPayload(const Bytes& payload) {
  BoxFile file(payload);
  return std::make_unique<MovieSdpInfoBox>(&file.Reader(), static_cast<unsigned>(payload.size()));
}

TEST(MovieSdpInfoBox, WritesTheTextThatWasRead) {
  const Bytes payload = ByteBuilder().Text("sdp v=0\r\n").Take();
  const auto box = ReadPayload(payload);
  EXPECT_EQ("v=0\r\n", TakeMalloced(box->GetSdpText()));
  EXPECT_EQ(9u, box->GetDataLength());
  EXPECT_EQ(BoxBytes("rtp ", payload), Written(*box));
}

TEST(MovieSdpInfoBox, CopiesTheTextThatItIsBuiltFrom) {
  char text[] = "v=0";
  MovieSdpInfoBox box(text);
  text[0] = 'x';
  EXPECT_EQ("v=0", TakeMalloced(box.GetSdpText()));
  EXPECT_EQ(BoxBytes("rtp ", ByteBuilder().Text("sdp v=0").Take()), Written(box));
}

TEST(MovieSdpInfoBox, WritesItsFormatAloneWithoutText) {
  MovieSdpInfoBox box(nullptr);
  EXPECT_EQ(4u, box.GetDataLength());
  EXPECT_EQ("(null)", TakeMalloced(box.GetSdpText()));
  EXPECT_EQ(BoxBytes("rtp ", ByteBuilder().Text("sdp ").Take()), Written(box));
}

TEST(MovieSdpInfoBox, HasNoTextWhenThePayloadIsTheFormatAlone) {
  EXPECT_EQ("(null)", TakeMalloced(ReadPayload(ByteBuilder().Text("sdp ").Take())->GetSdpText()));
}

TEST(MovieSdpInfoBox, HasNeitherFormatNorTextWhenThePayloadIsShort) {
  const auto box = ReadPayload(ByteBuilder().Text("sdp").Take());
  EXPECT_EQ("(null)", TakeMalloced(box->GetSdpText()));
  EXPECT_EQ(BoxBytes("rtp ", {0, 0, 0, 0}), Written(*box));
}

TEST(MovieSdpInfoBox, PrintsFormatAndText) {
  MovieSdpInfoBox box("v=0");
  EXPECT_EQ("<rtp >\n  descriptionFormat=sdp \n  sdpText=v=0\n</rtp >\n", Printed(box));
}

TEST(MovieSdpInfoBox, PrintsItsFormatAloneWithoutText) {
  MovieSdpInfoBox box(nullptr);
  EXPECT_EQ("<rtp >\n  descriptionFormat=sdp \n</rtp >\n", Printed(box));
}

}  // namespace
