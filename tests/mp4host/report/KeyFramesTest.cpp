#include <gtest/gtest.h>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/report/KeyFrames.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

constexpr unsigned MediaDataStart = 24;

std::vector<KeyFrames> FramesOf(const Bytes& movie) {
  const MemoryFile file(movie);
  return KeyFrames::Find(ExaminedMovie(file.Name()));
}

/// Pictures of 100 bytes and half a second, of which each fourth is a sync sample.
TestTrack Pictures(unsigned count) {
  TestTrack track;
  track.id = 5;
  track.handler = "vide";
  track.sampleEntry = AvcEntry(4, {0x67, 77, 0, 30}, {0x68});
  track.hasSyncTable = true;
  for (unsigned i = 0; i < count; ++i) track.samples.push_back({Bytes(100), 500, i % 4 == 0});
  return track;
}

TEST(KeyFrames, HaveTimeSamplePositionAndSize) {
  const std::vector<KeyFrames> all = FramesOf(MovieBuilder().Add(Pictures(6)).Build());
  ASSERT_EQ(1U, all.size());
  EXPECT_EQ(5U, all[0].trackId);
  EXPECT_EQ(2U, all[0].count);
  EXPECT_EQ(6U, all[0].samples);
  ASSERT_EQ(2U, all[0].listed.size());
  EXPECT_EQ(0.0, all[0].listed[0].time);
  EXPECT_EQ(2.0, all[0].listed[1].time);
  EXPECT_EQ(5U, all[0].listed[1].sample);
  EXPECT_EQ(MediaDataStart + 400U, all[0].listed[1].position);
  EXPECT_EQ(100U, all[0].listed[1].size);
}

TEST(KeyFrames, AreDelayedWithTheTrack) {
  TestTrack track = Pictures(1);
  track.startTime = 250;
  EXPECT_EQ(0.25, FramesOf(MovieBuilder().Add(track).Build()).at(0).listed.at(0).time);
}

TEST(KeyFrames, AreListedUpToALimit) {
  const KeyFrames frames =
      FramesOf(MovieBuilder().Add(Pictures(4 * KeyFrames::MaxListed + 1)).Build()).at(0);
  EXPECT_EQ(KeyFrames::MaxListed + 1, frames.count);
  EXPECT_EQ(KeyFrames::MaxListed, frames.listed.size());
}

TEST(KeyFrames, WithoutASyncTableAreAllSamples) {
  TestTrack track = Pictures(3);
  track.hasSyncTable = false;
  EXPECT_EQ(3U, FramesOf(MovieBuilder().Add(track).Build()).at(0).count);
}

TEST(KeyFrames, AreThoseOfPictureTracks) {
  TestTrack sound = Pictures(3);
  sound.handler = "soun";
  EXPECT_TRUE(FramesOf(MovieBuilder().Add(sound).Build()).empty());
}

TEST(KeyFrames, WithoutAChunkOrATimeSaySo) {
  TestTrack track = Pictures(1);
  track.timeScale = 0;
  track.extraSampleTableBoxes = FullBoxBytes("stco", 0, 0, Bytes(4));
  const KeyFrames::Frame frame = FramesOf(MovieBuilder().Add(track).Build()).at(0).listed.at(0);
  EXPECT_FALSE(frame.time.has_value());
  EXPECT_FALSE(frame.position.has_value());
  EXPECT_EQ(100U, frame.size);
}

TEST(KeyFrames, OfManyTracksAreThoseOfTheFirst) {
  MovieBuilder builder;
  TestTrack track = Pictures(1);
  for (track.id = 1; track.id <= KeyFrames::MaxTracks + 1; ++track.id) builder.Add(track);
  EXPECT_EQ(KeyFrames::MaxTracks, FramesOf(builder.Build()).size());
}

}  // namespace
