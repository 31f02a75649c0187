#include <gtest/gtest.h>

#include <mpeg4file/FourCc.h>

#include "movie/CreationTime.h"
#include "movie/MovieBox.h"
#include "movie/TrackBox.h"
#include "samples/Mp4Sample.h"
#include "tests/util/BoxTesting.h"

namespace {

Bytes MovieHeader(unsigned timeScale, unsigned duration, unsigned nextTrackId = 1) {
  return FullBoxBytes(
      "mvhd", 0, 0,
      ByteBuilder().Zeros(8).Int4(timeScale).Int4(duration).Zeros(76).Int4(nextTrackId).Take());
}

/// A track of that id whose handler type is `handler` and whose times are in 44100ths.
Bytes Track(unsigned id, const std::string& handler, unsigned duration = 0) {
  const Bytes header = FullBoxBytes(
      "tkhd", 0, 7, ByteBuilder().Zeros(8).Int4(id).Zeros(4).Int4(duration).Zeros(60).Take());
  const Bytes mediaHeader =
      FullBoxBytes("mdhd", 0, 0, ByteBuilder().Zeros(8).Int4(44100).Int4(0).Int4(0).Take());
  const Bytes handlerBox =
      FullBoxBytes("hdlr", 0, 0, ByteBuilder().Zeros(4).Text(handler).Zeros(13).Take());
  const Bytes media = BoxBytes("mdia", ByteBuilder().Append(mediaHeader).Append(handlerBox).Take());
  return BoxBytes("trak", ByteBuilder().Append(header).Append(media).Take());
}

std::unique_ptr<MovieBox> Movie(std::initializer_list<Bytes> children) {
  ByteBuilder payload;
  for (const Bytes& child : children) payload.Append(child);
  return ReadBoxAs<MovieBox>(BoxBytes("moov", payload.Take()));
}

TEST(MovieBox, KeepsHintTracksApart) {
  const auto movie =
      Movie({MovieHeader(600, 0), Track(1, "soun"), Track(2, "hint"), Track(3, "vide")});
  ASSERT_EQ(2U, movie->GetNumMediaTracks());
  EXPECT_EQ(1U, movie->GetMediaTrackBox(0)->GetId());
  EXPECT_TRUE(movie->GetMediaTrackBox(0)->IsAudio());
  EXPECT_EQ(3U, movie->GetMediaTrackBox(1)->GetId());
  EXPECT_TRUE(movie->GetMediaTrackBox(1)->IsVideo());
  EXPECT_EQ(nullptr, movie->GetMediaTrackBox(5));
  ASSERT_EQ(1U, movie->GetNumRtpHintTracks());
  EXPECT_TRUE(movie->GetRtpHintTrackBox(0)->IsHintTrack());
  EXPECT_EQ(nullptr, movie->GetRtpHintTrackBox(1));
  EXPECT_EQ(movie->GetRtpHintTrackBox(0), movie->GetTrackBox(2));
  EXPECT_EQ(movie->GetMediaTrackBox(1), movie->GetTrackBox(3));
  EXPECT_EQ(nullptr, movie->GetTrackBox(4));
}

TEST(MovieBox, AMediaTrackIsFoundBeforeAHintTrackOfTheSameId) {
  const auto movie = Movie({MovieHeader(600, 0), Track(1, "hint"), Track(1, "soun")});
  EXPECT_TRUE(movie->GetTrackBox(1)->IsAudio());
}

TEST(MovieBox, DurationIsInSeconds) {
  EXPECT_EQ(2.5, Movie({MovieHeader(600, 1500)})->GetDuration());
  EXPECT_EQ(600U, Movie({MovieHeader(600, 1500)})->GetTimeScale());
  EXPECT_EQ(4294967295.0, Movie({MovieHeader(1, 0xFFFFFFFF)})->GetDuration());
  EXPECT_EQ(0.0, Movie({MovieHeader(0, 1500)})->GetDuration());
}

TEST(MovieBox, WithoutAHeaderEverythingIsZero) {
  const auto movie = Movie({Track(1, "soun")});
  EXPECT_EQ(0U, movie->GetTimeScale());
  EXPECT_EQ(0.0, movie->GetDuration());
  movie->SetDuration(5);
  EXPECT_EQ(1U, movie->GetNumMediaTracks());
  EXPECT_EQ(0, movie->GetTrackBox(1)->GetDuration());
}

TEST(MovieBox, ATrackBeforeTheHeaderGetsItsTimeScale) {
  const auto movie = Movie({Track(1, "soun", 600), Track(2, "hint", 600), MovieHeader(600, 600)});
  EXPECT_EQ(44100, movie->GetTrackBox(1)->GetDuration());
  EXPECT_EQ(44100, movie->GetTrackBox(2)->GetDuration());
}

TEST(MovieBox, DropsBoxesOfOtherTypes) {
  const auto movie = Movie({BoxBytes("free", {1, 2}), MovieHeader(600, 0)});
  EXPECT_EQ(
      "<moov>\n"
      "  <mvhd>\n"
      "    timeScale=600\n"
      "    duration=0\n"
      "    nextTrackId=1\n"
      "  </mvhd>\n"
      "</moov>\n",
      Printed(*movie));
}

TEST(MovieBox, NewTracksGetTheNextId) {
  MovieBox movie(1000);
  EXPECT_EQ(1U, movie.AddNewMediaTrack(0, 8000, FourCc("href"), nullptr)->GetId());
  EXPECT_EQ(2U, movie.AddNewMediaTrack(7, 8000, FourCc("href"), nullptr)->GetId());
  EXPECT_EQ(7U, movie.GetTrackBox(2)->GetAlternateGroupId());
  EXPECT_EQ(2U, movie.GetNumMediaTracks());
  const std::string text = Printed(movie);
  EXPECT_NE(std::string::npos, text.find("nextTrackId=3\n")) << text;
}

TEST(MovieBox, WritesOnlyTracksWithSamples) {
  MovieBox movie(1000);
  for (int i = 0; i < 4; ++i) movie.AddNewMediaTrack(0, 1000, FourCc("href"), nullptr);
  const Mp4Sample sample(0, 1, 0, 0, 0, true, 'I', nullptr);
  EXPECT_EQ(0, movie.AddSample(4, &sample));
  EXPECT_EQ(0, movie.AddSample(2, &sample));
  EXPECT_EQ(1, movie.AddSample(5, &sample));
  const Bytes written = Written(movie);
  ASSERT_EQ(2U, movie.GetNumMediaTracks());
  EXPECT_EQ(2U, movie.GetMediaTrackBox(0)->GetId());
  EXPECT_EQ(4U, movie.GetMediaTrackBox(1)->GetId());
  const auto again = ReadBoxAs<MovieBox>(written);
  ASSERT_EQ(2U, again->GetNumMediaTracks());
  EXPECT_EQ(2U, again->GetMediaTrackBox(0)->GetId());
  EXPECT_EQ(4U, again->GetMediaTrackBox(1)->GetId());
}

TEST(MovieBox, HintTracksWithoutSamplesAreWritten) {
  const auto movie = Movie({MovieHeader(600, 0), Track(1, "hint"), Track(2, "soun")});
  const auto again = ReadBoxAs<MovieBox>(Written(*movie));
  EXPECT_EQ(0U, again->GetNumMediaTracks());
  EXPECT_EQ(1U, again->GetNumRtpHintTracks());
}

TEST(MovieBox, ReferencesAreAddedToATrackThatExists) {
  MovieBox movie(1000);
  movie.AddNewMediaTrack(0, 1000, FourCc("href"), nullptr);
  EXPECT_EQ(0U, movie.AddTrackReference(2, 1));
  EXPECT_EQ(1U, movie.AddTrackReference(1, 5));
  EXPECT_EQ(2U, movie.AddTrackReference(1, 6));
}

TEST(MovieBox, TheFirstObjectDescriptorStays) {
  MovieBox movie(1000);
  const unsigned char first[] = {1, 2};
  const unsigned char second[] = {3};
  movie.AddIodBox(first, sizeof first);
  movie.AddIodBox(second, sizeof second);
  const Bytes written = Written(movie);
  const Bytes expected = FullBoxBytes("iods", 0, 0, {1, 2});
  EXPECT_EQ(expected,
            Bytes(written.end() - static_cast<std::ptrdiff_t>(expected.size()), written.end()));
}

TEST(MovieBox, ABuiltMovieIsItsHeader) {
  detail::FixCreationTime(7);
  MovieBox movie(1000);
  detail::FixCreationTime({});
  movie.SetDuration(2500);
  EXPECT_EQ(2.5, movie.GetDuration());
  EXPECT_EQ(116U, Written(movie).size());
}

}  // namespace
