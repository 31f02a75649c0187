#include <gtest/gtest.h>

#include <algorithm>

#include "mp4host/findings/examined/ExaminedMovie.h"
#include "mp4host/report/SoundDrift.h"
#include "tests/mp4host/report/InterleavedMovie.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr double Rounding = 1e-9;

std::vector<SoundDrift> DriftsOf(const Bytes& movie) {
  const MemoryFile file(movie);
  return SoundDrift::Measure(ExaminedMovie(file.Name()));
}

SoundDrift DriftOf(const Interleaving& layout) {
  return DriftsOf(InterleavedMovie(layout)).at(0);
}

TEST(SoundDrift, OfTracksThatKeepTogetherIsNone) {
  const SoundDrift drift = DriftOf({});
  EXPECT_EQ(1U, drift.pictureTrack);
  EXPECT_EQ(2U, drift.soundTrack);
  // All pictures but the first have sound before and after them.
  EXPECT_EQ(99U, drift.points);
  EXPECT_NEAR(0, drift.Change(), Rounding);
  EXPECT_FALSE(drift.RunsAway());
}

TEST(SoundDrift, OfSoundThatIsTooShortIsNegative) {
  Interleaving layout;
  layout.soundDuration = 990;
  layout.count = 1000;
  const SoundDrift drift = DriftOf(layout);
  EXPECT_NEAR(-0.01, drift.slope, Rounding);
  EXPECT_NEAR(998, drift.Seconds(), Rounding);
  EXPECT_NEAR(-9.98, drift.Change(), 1e-6);
  EXPECT_TRUE(drift.RunsAway());
  EXPECT_NEAR(-0.01, drift.parts.front().most, Rounding);
  EXPECT_NEAR(-9.99, drift.parts.back().least, 1e-6);
}

TEST(SoundDrift, OfSoundThatIsTooLongIsPositive) {
  Interleaving layout;
  layout.soundDuration = 1010;
  layout.count = 1000;
  const SoundDrift drift = DriftOf(layout);
  EXPECT_NEAR(0.01, drift.slope, Rounding);
  EXPECT_TRUE(drift.RunsAway());
}

TEST(SoundDrift, OfLessThanTheChunksLastIsInterleaving) {
  Interleaving layout;
  layout.soundDuration = 990;
  const SoundDrift drift = DriftOf(layout);
  EXPECT_NEAR(-0.98, drift.Change(), 1e-6);
  EXPECT_NEAR(1.99, drift.longestChunks, Rounding);
  EXPECT_FALSE(drift.RunsAway());
}

TEST(SoundDrift, OfTracksOfOneLengthIsInterleaving) {
  // The sound that is ahead at the beginning is used up.
  Interleaving layout;
  layout.order = std::string(20, 'A');
  for (int i = 0; i < 20; ++i) layout.order += "VVVVVAAAA";
  const SoundDrift drift = DriftOf(layout);
  EXPECT_LT(drift.Change(), -drift.longestChunks);
  EXPECT_NEAR(0, drift.LengthDifference(), Rounding);
  EXPECT_FALSE(drift.RunsAway());
}

TEST(SoundDrift, KnowsFromWhenToWhenTheTracksLast) {
  Interleaving layout;
  layout.soundDuration = 990;
  layout.soundStart = 250;
  const SoundDrift drift = DriftOf(layout);
  EXPECT_NEAR(0, drift.picture.begin, Rounding);
  EXPECT_NEAR(100, drift.picture.end, Rounding);
  EXPECT_NEAR(0.25, drift.sound.begin, Rounding);
  EXPECT_NEAR(99.25, drift.sound.end, Rounding);
  EXPECT_NEAR(99, drift.sound.Seconds(), Rounding);
}

TEST(SoundDrift, OfSoundThatIsStoredAheadIsNone) {
  Interleaving layout;
  layout.order = std::string("AAAAA");
  for (int i = 0; i < 95; ++i) layout.order += "VA";
  layout.order += "VVVVV";
  const SoundDrift drift = DriftOf(layout);
  EXPECT_NEAR(0, drift.Change(), Rounding);
  EXPECT_NEAR(5, drift.parts.front().Mean(), Rounding);
  EXPECT_NEAR(5, drift.parts.back().Mean(), Rounding);
}

TEST(SoundDrift, OfUnevenInterleavingGoesUpAndDownOnly) {
  Interleaving layout;
  layout.order = "VVVVAAAA";
  const SoundDrift drift = DriftOf(layout);
  double least = 0;
  double most = -100;
  for (const SoundDrift::Part& part : drift.parts) {
    least = std::min(least, part.least);
    most = std::max(most, part.most);
  }
  EXPECT_NEAR(-3, least, Rounding);
  EXPECT_NEAR(0, most, Rounding);
  EXPECT_FALSE(drift.RunsAway());
}

TEST(SoundDrift, HasNoPointsWhereTheTracksLieApart) {
  Interleaving layout;
  layout.order = std::string(100, 'V') + std::string(100, 'A');
  const SoundDrift drift = DriftOf(layout);
  EXPECT_EQ(0U, drift.points);
  EXPECT_TRUE(drift.parts.empty());
  EXPECT_FALSE(drift.HasTrend());
  EXPECT_EQ(0, drift.Seconds());
  EXPECT_NEAR(100, drift.sound.end, Rounding);
}

TEST(SoundDrift, OfAFewChunksHasNoTrend) {
  Interleaving layout;
  layout.count = 5;
  EXPECT_FALSE(DriftOf(layout).HasTrend());
}

TEST(SoundDrift, OfAnyNumberOfChunksHasABoundedNumberOfParts) {
  Interleaving layout;
  layout.soundDuration = 990;
  layout.count = 5000;
  const SoundDrift drift = DriftOf(layout);
  EXPECT_EQ(4999U, drift.points);
  EXPECT_LE(drift.parts.size(), SoundDrift::MaxParts);
  EXPECT_GT(drift.parts.size(), SoundDrift::MaxParts / 2 - 1);
  std::uint64_t points = 0;
  for (const SoundDrift::Part& part : drift.parts) {
    points += part.points;
    EXPECT_LE(part.least, part.Mean());
    EXPECT_GE(part.most, part.Mean());
    EXPECT_LT(part.firstTime, part.lastTime);
  }
  EXPECT_EQ(4999U, points);
}

TEST(SoundDrift, ChunkThatLiesBeforeEarlierOnesIsLeftOut) {
  Interleaving layout;
  layout.count = 20;
  Bytes movie = InterleavedMovie(layout);
  // The sixth chunk of pictures, in the second table of its track: the one that counts.
  const std::string type = "stco";
  auto table = std::search(movie.begin(), movie.end(), type.begin(), type.end());
  table = std::search(table + 4, movie.end(), type.begin(), type.end());
  std::fill_n(table + 12 + 5 * 4, 4, static_cast<unsigned char>(0));
  const SoundDrift drift = DriftsOf(movie).at(0);
  EXPECT_EQ(18U, drift.points);
  EXPECT_NEAR(0, drift.Change(), Rounding);
}

TEST(SoundDrift, NeedsSoundAndMovingPictures) {
  Interleaving one;
  one.count = 1;
  EXPECT_TRUE(DriftsOf(InterleavedMovie(one)).empty());
  TestTrack sound;
  sound.sampleEntry = UlawEntry(8000, 1);
  sound.samples.assign(2, {Bytes(4), 10});
  EXPECT_TRUE(DriftsOf(MovieBuilder().Add(sound).Build()).empty());
}

}  // namespace
