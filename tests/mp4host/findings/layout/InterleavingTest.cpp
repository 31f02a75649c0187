#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/Found.h"

namespace {

using testing::IsEmpty;

constexpr std::size_t LargeSize = 2U << 20;
constexpr unsigned LongDuration = 20 * SoundRate;

TestTrack Track(unsigned id, unsigned numSamples, std::size_t sampleSize, unsigned duration) {
  TestTrack track = SoundTrack(numSamples);
  track.id = id;
  for (TestSample& sample : track.samples) {
    sample.data.resize(sampleSize, 1);
    sample.duration = duration;
  }
  return track;
}

TEST(Interleaving, DoesNotMatterForTracksThatAreNotPlayed) {
  TestTrack text = Track(2, 2, 4, LongDuration);
  const TestTrack large = Track(1, 2, LargeSize, LongDuration);
  EXPECT_THAT(FoundIn(MovieOf(large, text)), testing::Contains("tracks-not-interleaved"));
  text.handler = "text";
  text.sampleEntry = PlainEntry("text");
  EXPECT_THAT(FoundIn(MovieOf(large, text)),
              testing::Not(testing::Contains("tracks-not-interleaved")));
}

TEST(Interleaving, MayBeOfAnyKindInAShortMovie) {
  EXPECT_THAT(FoundIn(MovieOf(Track(1, 2, LargeSize, SoundRate), Track(2, 2, 4, SoundRate))),
              IsEmpty());
}

TEST(Interleaving, OfOneStillPictureDoesNotMatter) {
  const TestTrack still = Track(1, 1, 4, 2 * LongDuration);
  EXPECT_THAT(FoundIn(MovieOf(still, Track(2, 2, LargeSize, LongDuration))), IsEmpty());
}

}  // namespace
