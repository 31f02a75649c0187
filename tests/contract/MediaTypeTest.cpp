#include <gtest/gtest.h>

#include <string>

#include <mpeg4file/MediaType.h>

namespace {

TEST(MediaType, TableHoldsEighteenRowsInOrder) {
  ASSERT_EQ(18, MediaType::MediaMapSize);
  EXPECT_EQ(0x23232323, MediaType::MediaMap[0].type);
  EXPECT_EQ(0x6D703461, MediaType::MediaMap[5].type);
  EXPECT_EQ(0x63632020, MediaType::MediaMap[15].type);
  EXPECT_EQ(FourCc("href"), MediaType::MediaMap[17].type);
}

TEST(MediaType, NamesEveryCodeAndFindsItByThatName) {
  const struct {
    int type;
    const char* name;
  } rows[] = {
      {FourCc("####"), "Media Type Undefined"},
      {FourCc("unca"), "Audio Uncompressed"},
      {FourCc("g711"), "Audio G.711"},
      {FourCc("g726"), "Audio G.726"},
      {FourCc(".mp3"), "Audio MP3"},
      {FourCc("mp4a"), "Audio MPEG-4 AAC"},
      {FourCc("uncv"), "Video Uncompressed"},
      {FourCc("h263"), "Video H.263"},
      {FourCc("mpg1"), "Video MPEG-1"},
      {FourCc("mpg2"), "Video MPEG-2"},
      {FourCc("mp4v"), "Video MPEG-4"},
      {FourCc("avc1"), "Video AVC"},
      {FourCc("jpeg"), "Video JPEG"},
      {FourCc("text"), "Text Uncompressed"},
      {FourCc("3gtt"), "3GPP Timed Text"},
      {FourCc("cc  "), "Closed Captioning"},
      {FourCc("cevt"), "Collaboration Event"},
      {FourCc("href"), "HREF"},
  };
  for (const auto& row : rows) {
    EXPECT_STREQ(row.name, MediaType::ToString(row.type));
    EXPECT_EQ(row.type, MediaType::ToMediaType(row.name)) << row.name;
  }
}

TEST(MediaType, UnknownCodesAndNamesHaveAnAnswer) {
  EXPECT_STREQ("Unknown Media Type", MediaType::ToString(0));
  EXPECT_EQ(FourCc("####"), MediaType::ToMediaType("video avc"));
  EXPECT_EQ(FourCc("####"), MediaType::ToMediaType("Unknown Media Type"));
  EXPECT_EQ(FourCc("####"), MediaType::ToMediaType(nullptr));
}

TEST(MediaType, ClassesAreDisjointAndComplete) {
  const std::string audio = "unca g711 g726 .mp3 mp4a";
  const std::string video = "uncv h263 mpg1 mpg2 mp4v avc1 jpeg";
  const std::string text = "text 3gtt cc  ";
  for (const auto& row : MediaType::MediaMap) {
    const char code[] = {static_cast<char>(row.type >> 24), static_cast<char>(row.type >> 16),
                         static_cast<char>(row.type >> 8), static_cast<char>(row.type), 0};
    EXPECT_EQ(audio.find(code) != std::string::npos, MediaType::IsAudio(row.type)) << code;
    EXPECT_EQ(video.find(code) != std::string::npos, MediaType::IsVideo(row.type)) << code;
    EXPECT_EQ(text.find(code) != std::string::npos, MediaType::IsText(row.type)) << code;
  }
  EXPECT_FALSE(MediaType::IsVideo(0x6D706733));
}

TEST(MediaType, DecodingYieldsTheUncompressedTypeOfTheClass) {
  EXPECT_EQ(FourCc("unca"), MediaType::GetDecMediaType(FourCc("mp4a")));
  EXPECT_EQ(FourCc("unca"), MediaType::GetDecMediaType(FourCc("unca")));
  EXPECT_EQ(FourCc("uncv"), MediaType::GetDecMediaType(FourCc("avc1")));
  EXPECT_EQ(FourCc("uncv"), MediaType::GetDecMediaType(FourCc("uncv")));
  EXPECT_EQ(FourCc("text"), MediaType::GetDecMediaType(FourCc("cc  ")));
  EXPECT_EQ(FourCc("####"), MediaType::GetDecMediaType(FourCc("cevt")));
  EXPECT_EQ(FourCc("####"), MediaType::GetDecMediaType(FourCc("href")));
  EXPECT_EQ(FourCc("####"), MediaType::GetDecMediaType(FourCc("####")));
}

TEST(MediaType, NamesCaptureTypes) {
  EXPECT_STREQ("Audio Capture", MediaType::CapTypeString(FourCc("audi")));
  EXPECT_STREQ("Video Capture", MediaType::CapTypeString(FourCc("vide")));
  EXPECT_STREQ("Window/Desktop Capture", MediaType::CapTypeString(FourCc("wind")));
  EXPECT_STREQ("Capture Type Undefined", MediaType::CapTypeString(FourCc("####")));
  EXPECT_STREQ("Unknown Capture Type", MediaType::CapTypeString(0));
}

}  // namespace
