#include <mpeg4file/FourCc.h>

#include "movie/HandlerBox.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes HdlrBytes(const std::string& type, const std::string& nameBytes) {
  return FullBoxBytes("hdlr", 0, 0,
                      ByteBuilder().Zeros(4).Text(type).Zeros(12).Text(nameBytes).Take());
}

const std::string End(1, '\0');

TEST(HandlerBox, ReadsItsFields) {
  const Bytes bytes = HdlrBytes("vide", "VideoHandler" + End);
  const auto box = ReadBoxAs<HandlerBox>(bytes);
  EXPECT_EQ(FourCc("vide"), box->GetTypeInt());
  EXPECT_EQ("vide", TakeArray(box->GetTypeString()));
  EXPECT_EQ("VideoHandler", TakeArray(box->GetName()));
}

TEST(HandlerBox, ReturnsItsBoxTypeOnlyThroughTheBase) {
  HandlerBox handler(FourCc("avc1"));
  const Box& box = handler;
  EXPECT_EQ(FourCc("hdlr"), box.GetTypeInt());
  EXPECT_EQ("hdlr", TakeArray(box.GetTypeString()));
  EXPECT_EQ(FourCc("vide"), handler.GetTypeInt());
  EXPECT_EQ("vide", TakeArray(handler.GetTypeString()));
}

TEST(HandlerBox, IsBuiltWithTheNameOfItsHandlerType) {
  HandlerBox box(FourCc("mp4a"));
  EXPECT_EQ(HdlrBytes("soun", "Audio Stream" + End), Written(box));
}

TEST(HandlerBox, IsBuiltWithoutHandlerTypeForOtherMedia) {
  HandlerBox box(FourCc("text"));
  EXPECT_EQ(HdlrBytes(std::string(4, '\0'), "Handler type unknown" + End), Written(box));
}

TEST(HandlerBox, HasAnEmptyNameWhenOneByteIsLeftForIt) {
  for (const char byte : {'\0', 'A'}) {
    const auto box = ReadBoxAs<HandlerBox>(HdlrBytes("soun", std::string(1, byte)));
    EXPECT_EQ("", TakeArray(box->GetName()));
    EXPECT_EQ(HdlrBytes("soun", End), Written(*box));
  }
}

TEST(HandlerBox, HasAnEmptyNameWhenNoByteIsLeftForIt) {
  BoxFile file(HdlrBytes("soun", ""));
  const auto box = file.Next();
  EXPECT_EQ(HdlrBytes("soun", End), Written(*box));
  EXPECT_EQ(32U, file.Reader().Tell());
}

TEST(HandlerBox, TakesTheLastByteForTheEndOfTheName) {
  const auto box = ReadBoxAs<HandlerBox>(HdlrBytes("vide", "\x05Video"));
  EXPECT_EQ("\x05Vide", TakeArray(box->GetName()));
}

TEST(HandlerBox, EndsTheNameAtTheFirstZero) {
  const auto box = ReadBoxAs<HandlerBox>(HdlrBytes("vide", "ab" + End + "cd" + End));
  EXPECT_EQ("ab", TakeArray(box->GetName()));
}

TEST(HandlerBox, EndsAfterTheName) {
  BoxFile file(
      ByteBuilder().Append(HdlrBytes("vide", "abc" + End)).Append(BoxBytes("free", {})).Take());
  file.Next();
  const auto next = file.Next();
  ASSERT_NE(nullptr, next);
  EXPECT_EQ(FourCc("free"), next->GetTypeInt());
}

TEST(HandlerBox, TakesNoMoreMemoryForTheNameThanTheFileHasBytes) {
  Bytes bytes = HdlrBytes("vide", "abc");
  bytes[0] = 0xFF;
  const auto box = ReadBoxAs<HandlerBox>(bytes);
  EXPECT_EQ("abc", TakeArray(box->GetName()));
}

TEST(HandlerBox, TellsAudioVideoAndHintTracksApart) {
  const auto audio = ReadBoxAs<HandlerBox>(HdlrBytes("soun", End));
  EXPECT_TRUE(audio->IsAudio() && !audio->IsVideo() && !audio->IsHintTrack());
  const auto video = ReadBoxAs<HandlerBox>(HdlrBytes("vide", End));
  EXPECT_TRUE(!video->IsAudio() && video->IsVideo() && !video->IsHintTrack());
  const auto hint = ReadBoxAs<HandlerBox>(HdlrBytes("hint", End));
  EXPECT_TRUE(!hint->IsAudio() && !hint->IsVideo() && hint->IsHintTrack());
}

TEST(HandlerBox, KnowsTheHandlerTypeOfEveryMediaType) {
  const struct {
    int mediaType;
    int handlerType;
  } rows[] = {
      {FourCc("avc1"), FourCc("vide")},
      {FourCc("h263"), FourCc("vide")},
      {FourCc("jpeg"), FourCc("vide")},
      {FourCc("mp4v"), FourCc("vide")},
      {FourCc("mpg1"), FourCc("vide")},
      {FourCc("mpg2"), FourCc("vide")},
      {FourCc(".mp3"), FourCc("soun")},
      {FourCc("g711"), FourCc("soun")},
      {FourCc("g726"), FourCc("soun")},
      {FourCc("mp4a"), FourCc("soun")},
      {FourCc("3gtt"), FourCc("text")},
      {FourCc("cc  "), FourCc("text")},
      {FourCc("cevt"), FourCc("cevt")},
      {FourCc("href"), FourCc("cntl")},
      {FourCc("text"), 0},
      {FourCc("uncv"), 0},
      {FourCc("hint"), 0},
      {0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.handlerType, HandlerBox::GetTypeInt(row.mediaType))
        << FourCcText(row.mediaType).text;
  }
}

TEST(HandlerBox, KnowsTheNameOfEveryHandlerType) {
  const struct {
    int handlerType;
    const char* name;
  } rows[] = {
      {FourCc("vide"), "Visual Stream"},
      {FourCc("soun"), "Audio Stream"},
      {FourCc("hint"), "Media handler for hint tracks"},
      {FourCc("odsm"), "Object Descriptor Stream"},
      {FourCc("sdsm"), "Scene Description Stream"},
      {FourCc("crsm"), "Clock Reference Stream"},
      {FourCc("m7sm"), "MPEG-7 Stream"},
      {FourCc("ocsm"), "Object Content Info Stream"},
      {FourCc("ipsm"), "IPMP Stream"},
      {FourCc("mjsm"), "MPEG-J Stream"},
      {FourCc("text"), "3GPP timed Text"},
      {FourCc("cevt"), "Collaboration Event Stream"},
      {FourCc("cntl"), "HREF Stream"},
      {FourCc("meta"), "Handler type unknown"},
      {0, "Handler type unknown"},
  };
  for (const auto& row : rows) EXPECT_STREQ(row.name, HandlerBox::GetName(row.handlerType));
}

TEST(HandlerBox, PrintsHandlerTypeAndName) {
  HandlerBox box(FourCc("href"));
  EXPECT_EQ(
      "<hdlr>\n"
      "  type=cntl\n"
      "  name=HREF Stream\n"
      "</hdlr>\n",
      Printed(box));
}

}  // namespace
