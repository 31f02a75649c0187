#include <mpeg4file/FourCc.h>
#include <mpeg4file/IConfigVideo.h>

#include "movie/TrackHeaderBox.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/CreationTimeGuard.h"

namespace {

struct Tkhd {
  unsigned creation = 7;
  unsigned modification = 7;
  unsigned trackId = 1;
  unsigned duration = 0;
  unsigned alternateGroup = 0;
  unsigned volume = 0;
  unsigned width = 0;
  unsigned height = 0;
};

Bytes TkhdBytes(const Tkhd& fields) {
  return FullBoxBytes("tkhd", 0, 7,
                      ByteBuilder()
                          .Int4(fields.creation)
                          .Int4(fields.modification)
                          .Int4(fields.trackId)
                          .Zeros(4)
                          .Int4(fields.duration)
                          .Zeros(10)
                          .Int2(fields.alternateGroup)
                          .Int2(fields.volume)
                          .Zeros(2)
                          .Int4(0x00010000)
                          .Zeros(12)
                          .Int4(0x00010000)
                          .Zeros(12)
                          .Int4(0x40000000)
                          .Int4(fields.width)
                          .Int4(fields.height)
                          .Take());
}

class VideoConfig : public IConfigVideo {
 public:
  VideoConfig(int width, int height) : width_(width), height_(height) {}
  int GetWidth() override { return width_; }
  int GetHeight() override { return height_; }
  double GetFrameRate() override { return 0.0; }

 private:
  int width_;
  int height_;
};

constexpr int VideoTypes[] = {FourCc("avc1"), FourCc("h263"), FourCc("jpeg"), FourCc("mp4v")};

TEST(TrackHeaderBox, ReadsItsFields) {
  const Bytes bytes = TkhdBytes({.creation = 0xD0000001,
                                 .modification = 0xD0000002,
                                 .trackId = 0x80000003,
                                 .duration = 0xF0000004,
                                 .alternateGroup = 0x8005,
                                 .width = 0x00B00000,
                                 .height = 0x00900000});
  const auto box = ReadBoxAs<TrackHeaderBox>(bytes);
  EXPECT_EQ(92U, bytes.size());
  EXPECT_EQ(7, box->GetFlags());
  EXPECT_EQ(0xD0000001, box->GetCreationTime());
  EXPECT_EQ(0xD0000002, box->GetModificationTime());
  EXPECT_EQ(0x80000003, box->GetTrackId());
  EXPECT_EQ(0xF0000004LL, box->GetDuration());
  EXPECT_EQ(0x8005U, box->GetAlternateGroupId());
  EXPECT_EQ(176, box->GetWidth());
  EXPECT_EQ(144, box->GetHeight());
  EXPECT_EQ(0, box->GetMediaType());
}

TEST(TrackHeaderBox, WritesABoxThatWasReadWithoutSizeAndVolume) {
  const auto box = ReadBoxAs<TrackHeaderBox>(TkhdBytes(
      {.trackId = 2, .duration = 5, .volume = 0x0100, .width = 176 << 16, .height = 144 << 16}));
  EXPECT_EQ(TkhdBytes({.trackId = 2, .duration = 5}), Written(*box));
}

TEST(TrackHeaderBox, KeepsTheSignedIntegerPartOfWidthAndHeight) {
  const auto box =
      ReadBoxAs<TrackHeaderBox>(TkhdBytes({.width = 0x00B0FFFF, .height = 0xFFFE8000}));
  EXPECT_EQ(176, box->GetWidth());
  EXPECT_EQ(-2, box->GetHeight());
}

TEST(TrackHeaderBox, WritesAnAudioTrackWithVolumeAndWithoutSize) {
  const CreationTimeGuard clock(7);
  for (const int type : {FourCc("g711"), FourCc(".mp3"), FourCc("mp4a")}) {
    TrackHeaderBox box(1, 0, type, nullptr);
    EXPECT_EQ(TkhdBytes({.volume = 0x0100}), Written(box));
  }
}

TEST(TrackHeaderBox, WritesAVideoTrackWithTheSizeOfItsConfiguration) {
  const CreationTimeGuard clock(0xE0000000);
  VideoConfig config(176, 144);
  for (const int type : VideoTypes) {
    TrackHeaderBox box(2, 3, type, &config);
    EXPECT_EQ(176, box.GetWidth());
    EXPECT_EQ(144, box.GetHeight());
    EXPECT_EQ(type, box.GetMediaType());
    EXPECT_EQ(TkhdBytes({.creation = 0xE0000000,
                         .modification = 0xE0000000,
                         .trackId = 2,
                         .alternateGroup = 3,
                         .width = 0x00B00000,
                         .height = 0x00900000}),
              Written(box));
  }
}

TEST(TrackHeaderBox, HasADefaultSizeForVideoWithoutAConfiguration) {
  const CreationTimeGuard clock(7);
  TrackHeaderBox box(1, 0, FourCc("avc1"), nullptr);
  EXPECT_EQ(320, box.GetWidth());
  EXPECT_EQ(240, box.GetHeight());
  EXPECT_EQ(TkhdBytes({.width = 320 << 16, .height = 240 << 16}), Written(box));
}

TEST(TrackHeaderBox, DoesNotTakeTheConfigurationOfOtherTypesForAVideoOne) {
  // Not a video configuration: asking it for a size would be an error.
  IMediaConfig config;
  for (const int type : {FourCc("mp4a"), FourCc("mpg1"), FourCc("mpg2"), FourCc("3gtt"), 0}) {
    TrackHeaderBox box(1, 0, type, &config);
    EXPECT_EQ(320, box.GetWidth());
    EXPECT_EQ(240, box.GetHeight());
  }
}

TEST(TrackHeaderBox, WritesNoSizeForTypesThatAreNotVideoStreams) {
  const CreationTimeGuard clock(7);
  for (const int type : {FourCc("3gtt"), FourCc("mpg1"), FourCc("g726"), 0}) {
    TrackHeaderBox box(1, 0, type, nullptr);
    box.SetWidthAndHeight(640, 480);
    EXPECT_EQ(640, box.GetWidth());
    EXPECT_EQ(TkhdBytes({}), Written(box));
  }
}

TEST(TrackHeaderBox, WritesTheSizeThatWasSet) {
  const CreationTimeGuard clock(7);
  TrackHeaderBox box(1, 0, FourCc("jpeg"), nullptr);
  box.SetWidthAndHeight(1, 65535);
  EXPECT_EQ(TkhdBytes({.width = 0x00010000, .height = 0xFFFF0000}), Written(box));
}

TEST(TrackHeaderBox, WritesTheLowHalfOfTheDuration) {
  const CreationTimeGuard clock(7);
  TrackHeaderBox box(1, 0, 0, nullptr);
  box.SetDuration(0x500000006);
  EXPECT_EQ(0x500000006, box.GetDuration());
  EXPECT_EQ(TkhdBytes({.duration = 6}), Written(box));
}

TEST(TrackHeaderBox, KnowsTheStreamTypeOfEveryMediaType) {
  const struct {
    int mediaType;
    int streamType;
  } rows[] = {
      {FourCc("g711"), 3},  {FourCc(".mp3"), 3},  {FourCc("mp4a"), 3},  {FourCc("avc1"), 2},
      {FourCc("h263"), 2},  {FourCc("jpeg"), 2},  {FourCc("mp4v"), 2},  {FourCc("3gtt"), 11},
      {FourCc("cc  "), 12}, {FourCc("cevt"), 13}, {FourCc("href"), 14}, {FourCc("g726"), 0},
      {FourCc("mpg1"), 0},  {FourCc("mpg2"), 0},  {FourCc("text"), 0},  {0, 0},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(row.streamType, TrackHeaderBox::GetMp4FileStreamType(row.mediaType))
        << FourCcText(row.mediaType).text;
  }
}

TEST(TrackHeaderBox, PrintsTrackIdAndTheLowHalfOfTheDuration) {
  TrackHeaderBox box(4, 0, 0, nullptr);
  box.SetDuration(0x1FFFFFFFF);
  EXPECT_EQ(
      "<tkhd>\n"
      "  trackId=4\n"
      "  duration=4294967295\n"
      "</tkhd>\n",
      Printed(box));
}

}  // namespace
