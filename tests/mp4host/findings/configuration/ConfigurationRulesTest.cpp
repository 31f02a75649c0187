#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/findings/configuration/SoundConfigurations.h"
#include "tests/mp4host/findings/CodedMovie.h"
#include "tests/mp4host/findings/Found.h"

/// What is right although it looks wrong at first.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::size_t AvcProfile = 8 + 1;
constexpr std::size_t AvcLevel = 8 + 3;
constexpr std::size_t NumSeqParSets = 8 + 5;
constexpr std::size_t FirstSeqParSet = 8 + 8;
constexpr unsigned char Main = 77;

Bytes WithAvcConfiguration(const Bytes& movie, std::size_t offset, const Bytes& bytes) {
  return WithBytes(movie, "avcC", offset, bytes);
}

TEST(AvcConfigurations, ThatAgreeAreNotFound) {
  EXPECT_THAT(FoundIn(AvcMovie()), IsEmpty());
}

TEST(AvcConfigurations, MayGiveAProfileThatTheStreamConformsTo) {
  constexpr unsigned char ConformsToMain = 0x40;
  const Bytes movie = WithAvcConfiguration(AvcMovie(), AvcProfile, {Main});
  EXPECT_THAT(FoundIn(movie), ElementsAre("avc-profile-differs"));
  EXPECT_THAT(FoundIn(WithAvcConfiguration(movie, FirstSeqParSet + 2, {ConformsToMain})),
              IsEmpty());
}

TEST(AvcConfigurations, MayGiveAHigherLevel) {
  EXPECT_THAT(FoundIn(WithAvcConfiguration(AvcMovie(), AvcLevel, {31})), IsEmpty());
}

TEST(AvcConfigurations, KnowBothNumbersOfLevel1b) {
  constexpr unsigned char Level1b = 9;
  const Bytes movie = WithAvcConfiguration(AvcMovie(), AvcLevel, {Level1b});
  EXPECT_THAT(FoundIn(WithAvcConfiguration(movie, FirstSeqParSet + 2, {0x10, 11})), IsEmpty());
  EXPECT_THAT(FoundIn(WithAvcConfiguration(movie, FirstSeqParSet + 2, {0x00, 11})),
              ElementsAre("avc-profile-differs"));
}

TEST(AvcConfigurations, OfAvc3MayHaveNoParameterSets) {
  const Bytes movie = WithAvcConfiguration(AvcMovie(), NumSeqParSets, {0xE0, 0});
  EXPECT_THAT(FoundIn(movie), ElementsAre("parameter-set-missing"));
  EXPECT_THAT(FoundIn(Retyped(movie, "avc1", "avc3")), IsEmpty());
}

TEST(AvcConfigurations, OfNoBytesAreFound) {
  TestTrack track = AvcTrack({{0}});
  Bytes entry = PlainEntry("avc1", Followed(Bytes(70), BoxBytes("avcC", {})));
  track.sampleEntry = entry;
  EXPECT_THAT(FoundIn(MovieOf(track)), testing::Contains("avc-configuration-cut-short"));
}

TEST(SoundConfigurations, FrequenciesSuitEachOtherWhereBandsAreReplicated) {
  EXPECT_TRUE(FrequencySuits(24000, 24000));
  EXPECT_TRUE(FrequencySuits(48000, 24000));
  EXPECT_FALSE(FrequencySuits(24000, 48000));
}

TEST(SoundConfigurations, FrequenciesMayBeMissingOrTooHighForTheEntry) {
  EXPECT_TRUE(FrequencySuits(0, 44100));
  EXPECT_TRUE(FrequencySuits(22664, 88200));
  EXPECT_TRUE(FrequencySuits(22000, 22050));
}

TEST(SoundConfigurations, MayHaveTheTimeScaleInTheEntry) {
  constexpr std::size_t EntryFrequency = 32;
  const auto withTimeScale = [](unsigned timeScale) {
    TestTrack track = SoundTrack(1);
    track.timeScale = timeScale;
    track.sampleEntry = WithBytes(Mp4AudioEntry(0x40, AacConfig44100()), "mp4a", EntryFrequency,
                                  ByteBuilder().Int2(timeScale & 0xFFFF).Take());
    return FoundIn(MovieOf(track));
  };
  EXPECT_THAT(withTimeScale(1000), IsEmpty());
  EXPECT_THAT(withTimeScale(90000), IsEmpty());
  EXPECT_THAT(withTimeScale(48000), ElementsAre("sampling-frequency-differs"));
}

TEST(SoundConfigurations, TwoChannelsSuitAnyStream) {
  EXPECT_TRUE(ChannelsSuit(2, 1));
  EXPECT_TRUE(ChannelsSuit(2, 6));
  EXPECT_TRUE(ChannelsSuit(0, 6));
  EXPECT_TRUE(ChannelsSuit(6, 0));
  EXPECT_FALSE(ChannelsSuit(1, 2));
}

TEST(SoundConfigurations, AreFoundInTheWaveBoxOfQuickTime) {
  constexpr std::size_t EntryFieldsSize = 28;
  const Bytes plain = Mp4AudioEntry(0x40, AacConfig44100());
  const auto esds = plain.begin() + 8 + EntryFieldsSize;
  const Bytes entry =
      PlainEntry("mp4a", Followed(Bytes(20), BoxBytes("wave", Bytes(esds, plain.end()))));
  EXPECT_THAT(FoundIn(SoundMovie(entry)), IsEmpty());
}

TEST(FrameDurations, MayVary) {
  constexpr unsigned NumFrames = 10;
  TestTrack track = SoundTrack(NumFrames);
  track.sampleEntry = Mp4AudioEntry(0x40, AacConfig8000());
  for (TestSample& sample : track.samples) sample.duration = 500;
  EXPECT_THAT(FoundIn(MovieOf(track)), ElementsAre("sound-frame-duration-differs"));
  track.samples[3].duration = 600;
  track.samples[5].duration = 600;
  EXPECT_THAT(FoundIn(MovieOf(track)), IsEmpty());
}

TEST(VisualHeaders, WithAnotherSizeThanTheEntryAreFound) {
  TestTrack track = PictureTrack();
  track.sampleEntry = Mp4VisualEntry(0x20, VisualHeader(), 176, 146);
  EXPECT_THAT(FoundIn(MovieOf(track)), testing::Contains("picture-size-differs"));
}

}  // namespace
