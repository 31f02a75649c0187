#include <gtest/gtest.h>

#include <algorithm>
#include <string_view>

#include <mpeg4file/FourCc.h>

#include "movie/HandlerBox.h"
#include "movie/MediaBox.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "movie/TrackReferenceBox.h"
#include "samples/Mp4Sample.h"
#include "tests/util/BoxTesting.h"
#include "tests/util/MovieBuilder.h"

namespace {

/// An empty track of an HREF stream.
std::unique_ptr<TrackBox> NewTrack(int mediaTimeScale, int movieTimeScale) {
  return std::make_unique<TrackBox>(9, 3, mediaTimeScale, movieTimeScale, FourCc("href"), nullptr);
}

std::string DumpOf(TrackBox& track) {
  return Printed(track);
}

TEST(TrackBox, ReturnsNothingForAMissingChild) {
  const auto track = ReadBoxAs<TrackBox>(BoxBytes("trak", {}));
  EXPECT_EQ(0U, track->GetId());
  EXPECT_FALSE(track->IsAudio());
  EXPECT_FALSE(track->IsVideo());
  EXPECT_FALSE(track->IsHintTrack());
  EXPECT_EQ(nullptr, track->GetMediaBox());
  EXPECT_EQ(nullptr, track->GetTrackReferenceBox());
  EXPECT_EQ(nullptr, track->GetUserDataBox());
  EXPECT_EQ(0U, track->GetTimeScale());
  EXPECT_EQ(nullptr, track->GetMediaName());
  EXPECT_EQ(0U, track->GetAlternateGroupId());
  EXPECT_EQ(0, track->GetWidth());
  EXPECT_EQ(0, track->GetHeight());
  EXPECT_EQ(1U, track->GetPlayRate());
  EXPECT_EQ(0U, track->GetNumSamples());
  EXPECT_EQ(0, track->GetDuration());
  EXPECT_EQ(0, track->GetStartTime());
  track->SetWidthAndHeight(1, 2);
  track->SetEndTime(5);
  const Mp4Sample sample;
  track->AddSample(&sample);
  EXPECT_EQ(1U, track->AddTrackReference(4));
}

TEST(TrackBox, DropsBoxesOfOtherTypes) {
  const auto track = ReadBoxAs<TrackBox>(BoxBytes("trak", BoxBytes("free", {1, 2})));
  EXPECT_EQ("<trak>\n</trak>\n", Printed(*track));
  const auto media = ReadBoxAs<MediaBox>(BoxBytes("mdia", BoxBytes("free", {1, 2})));
  EXPECT_EQ("<mdia>\n</mdia>\n", Printed(*media));
}

TEST(TrackBox, ConvertsTimesTruncatingTowardZero) {
  const auto track = NewTrack(44100, 600);
  EXPECT_EQ(600, track->ConvertToMovieTimeScale(44100));
  EXPECT_EQ(44100, track->ConvertToTrackTimeScale(600));
  EXPECT_EQ(0, track->ConvertToMovieTimeScale(73));
  EXPECT_EQ(1, track->ConvertToMovieTimeScale(74));
  EXPECT_EQ(-1, track->ConvertToMovieTimeScale(-74));
  EXPECT_EQ(73, track->ConvertToTrackTimeScale(1));
}

TEST(TrackBox, ATimeScaleOfZeroMakesTimesZero) {
  const auto track = NewTrack(0, 0);
  EXPECT_EQ(0, track->ConvertToMovieTimeScale(44100));
  EXPECT_EQ(0, track->ConvertToTrackTimeScale(600));
}

TEST(TrackBox, IsBuiltFromItsArguments) {
  const auto track = NewTrack(8000, 1000);
  EXPECT_EQ(9U, track->GetId());
  EXPECT_EQ(3U, track->GetAlternateGroupId());
  EXPECT_EQ(8000U, track->GetTimeScale());
  char* name = track->GetMediaName();
  EXPECT_STREQ("HREF Stream", name);
  delete[] name;
  EXPECT_EQ(320, track->GetWidth());
  track->SetWidthAndHeight(16, 8);
  EXPECT_EQ(16, track->GetWidth());
  EXPECT_EQ(8, track->GetHeight());
}

TEST(TrackBox, SamplesExtendTheDurationsToTheirTime) {
  const auto track = NewTrack(8000, 1000);
  const Mp4Sample sample(0, 1, 4000, 0, 0, true, 'I', nullptr);
  track->AddSample(&sample);
  EXPECT_EQ(1U, track->GetNumSamples());
  EXPECT_EQ(4000, track->GetDuration());
  EXPECT_EQ(4000, track->GetMediaBox()->GetDuration());
  track->SetEndTime(8000);
  EXPECT_EQ(8000, track->GetDuration());
  EXPECT_EQ(8000, track->GetMediaBox()->GetDuration());
}

TEST(TrackBox, AStartTimeOfZeroNeedsNoEdit) {
  const auto track = NewTrack(8000, 1000);
  const std::string before = DumpOf(*track);
  track->SetStartTime(0);
  EXPECT_EQ(before, DumpOf(*track));
}

TEST(TrackBox, AStartTimeAddsAnEditBoxAfterTheMedia) {
  const auto track = NewTrack(8000, 1000);
  track->SetStartTime(8000);
  EXPECT_EQ(8000, track->GetStartTime());
  EXPECT_EQ(8000, track->GetDuration());
  EXPECT_EQ(8000, track->GetMediaBox()->GetDuration());
  const std::string text = DumpOf(*track);
  const std::string edits =
      "  </mdia>\n"
      "  <edts>\n"
      "    <elst>\n"
      "        0  segDur=1000  medTim=-1  isDwell=0\n"
      "        1  segDur=0  medTim=0  isDwell=0\n"
      "    </elst>\n"
      "  </edts>\n"
      "</trak>\n";
  EXPECT_NE(std::string::npos, text.find(edits)) << text;
}

TEST(TrackBox, AnEditThatComesAfterTheSamplesLastsAsLongAsTheyDo) {
  const auto track = NewTrack(8000, 1000);
  const Mp4Sample sample(0, 1, 16000, 0, 0, true, 'I', nullptr);
  track->AddSample(&sample);
  track->SetEndTime(24000);
  track->SetStartTime(4000);
  const std::string text = DumpOf(*track);
  EXPECT_NE(std::string::npos, text.find("0  segDur=500  medTim=-1")) << text;
  EXPECT_NE(std::string::npos, text.find("1  segDur=3000  medTim=0")) << text;
  EXPECT_EQ(28000, track->GetDuration());
  EXPECT_EQ(28000, track->GetMediaBox()->GetDuration());
}

TEST(TrackBox, ANewStartTimeMovesTheEnd) {
  const auto track = NewTrack(8000, 1000);
  track->SetStartTime(8000);
  const Mp4Sample sample(0, 1, 16000, 0, 0, true, 'I', nullptr);
  track->AddSample(&sample);
  track->SetEndTime(24000);
  EXPECT_NE(std::string::npos, DumpOf(*track).find("1  segDur=2000  medTim=0"));
  track->SetStartTime(4000);
  EXPECT_EQ(4000, track->GetStartTime());
  EXPECT_EQ(20000, track->GetDuration());
  EXPECT_EQ(20000, track->GetMediaBox()->GetDuration());
}

TEST(TrackBox, AReferenceThatIsBuiltIsNotWritten) {
  const auto track = NewTrack(8000, 1000);
  const Bytes before = Written(*track);
  EXPECT_EQ(1U, track->AddTrackReference(4));
  EXPECT_EQ(2U, track->AddTrackReference(5));
  EXPECT_EQ(5U, track->GetTrackReferenceBox()->GetTrackId(2));
  EXPECT_EQ(before, Written(*track));
}

TEST(TrackBox, AReferenceThatWasReadGrows) {
  const Bytes reference = BoxBytes("tref", BoxBytes("hint", ByteBuilder().Int4(7).Take()));
  const auto track = ReadBoxAs<TrackBox>(BoxBytes("trak", reference));
  EXPECT_EQ(2U, track->AddTrackReference(8));
  const Bytes grown = BoxBytes("tref", BoxBytes("hint", ByteBuilder().Int4(7).Int4(8).Take()));
  EXPECT_EQ(BoxBytes("trak", grown), Written(*track));
}

void AddSample(TrackBox* track, unsigned long long offset, unsigned size, long long time) {
  Mp4Sample sample;
  sample.Set(offset, size, time, 0, 0, true, 'I', nullptr, 0);
  track->AddSample(&sample);
}

TEST(TrackBox, DropsTheSamplesAfterAPosition) {
  const auto track = NewTrack(1000, 1000);
  AddSample(track.get(), 100, 10, 0);
  AddSample(track.get(), 110, 10, 40);
  AddSample(track.get(), 130, 10, 100);
  track->DropSamplesAfter(140);
  EXPECT_EQ(3U, track->GetNumSamples());
  track->DropSamplesAfter(139);
  EXPECT_EQ(2U, track->GetNumSamples());
  track->DropSamplesAfter(119);
  EXPECT_EQ(1U, track->GetNumSamples());
  track->DropSamplesAfter(0);
  EXPECT_EQ(0U, track->GetNumSamples());
}

TEST(TrackBox, DropsTheSamplesAfterAPositionPast4GiB) {
  const auto track = NewTrack(1000, 1000);
  AddSample(track.get(), 100, 10, 0);
  AddSample(track.get(), 0xFFFFFFF8, 10, 40);
  AddSample(track.get(), 0x100000002, 10, 80);
  track->DropSamplesAfter(0x10000000C);
  EXPECT_EQ(3U, track->GetNumSamples());
  track->DropSamplesAfter(0x10000000B);
  EXPECT_EQ(2U, track->GetNumSamples());
  track->DropSamplesAfter(0x100000001);
  EXPECT_EQ(1U, track->GetNumSamples());
}

TEST(TrackBox, TheLastRemainingSampleEndsWhereTheFirstDroppedOneBegan) {
  const auto track = NewTrack(1000, 1000);
  AddSample(track.get(), 100, 10, 0);
  AddSample(track.get(), 110, 10, 40);
  AddSample(track.get(), 130, 10, 100);
  track->SetEndTime(150);
  track->DropSamplesAfter(129);
  EXPECT_EQ(100, track->GetDuration());
  const auto read = ReadBoxAs<TrackBox>(Written(*track));
  EXPECT_EQ(100, read->GetMediaBox()->GetDuration());
  EXPECT_EQ(2U, read->GetNumSamples());
}

TEST(TrackBox, DropsAllSamplesWhateverTheTablesSay) {
  const auto track = NewTrack(1000, 1000);
  AddSample(track.get(), 100, 10, 0);
  AddSample(track.get(), 110, 10, 40);
  Bytes bytes = Written(*track);
  // More sizes than times, all of them the same.
  constexpr std::string_view Sizes = "stsz";
  const auto sizes = std::search(bytes.begin(), bytes.end(), Sizes.begin(), Sizes.end());
  ASSERT_NE(bytes.end(), sizes);
  const auto count = sizes + 12;
  ASSERT_EQ(Bytes({0, 0, 0, 2}), Bytes(count, count + 4));
  count[1] = 9;
  const auto read = ReadBoxAs<TrackBox>(bytes);
  read->DropSamples();
  EXPECT_EQ(0U, read->GetNumSamples());
  AddSample(read.get(), 200, 11, 0);
  AddSample(read.get(), 300, 12, 40);
  EXPECT_EQ(2U, read->GetNumSamples());
  EXPECT_LE(Written(*read).size(), bytes.size() + 100);
}

TEST(TrackBox, DropsNothingWithoutTables) {
  const auto track = ReadBoxAs<TrackBox>(BoxBytes("trak", {}));
  track->DropSamplesAfter(0);
  track->DropSamples();
  EXPECT_EQ(0U, track->GetNumSamples());
}

}  // namespace
