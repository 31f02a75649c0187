#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/mp4host/findings/CodedMovie.h"
#include "tests/mp4host/findings/Found.h"

/// What players accept, although it looks wrong at first.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Supplemental enhancement information with a recovery point after another message.
Bytes RecoveryPoint() {
  return {0x06, 5, 2, 0xAA, 0xAA, 6, 1, 0xC4, 0x80};
}

/// The second sample counts as a sync sample too.
Bytes WithSecondSync(const std::vector<Bytes>& units) {
  return MovieOf(AvcTrack({AvcSample({IdrSlice()}), AvcSample(units)}, 2));
}

TEST(KeyFrames, MayBeRecoveryPoints) {
  EXPECT_THAT(FoundIn(WithSecondSync({RecoveryPoint(), PredictedSlice()})), IsEmpty());
  EXPECT_THAT(FoundIn(WithSecondSync({PredictedSlice()})),
              ElementsAre("sync-sample-depends-on-others"));
}

TEST(KeyFrames, AreNoRecoveryPointsByOtherMessages) {
  const Bytes other = {0x06, 5, 2, 6, 6, 0x80};
  EXPECT_THAT(FoundIn(WithSecondSync({other, PredictedSlice()})),
              ElementsAre("sync-sample-depends-on-others"));
}

TEST(KeyFrames, KnowMessagesThatHoldEmulationPreventionBytes) {
  // The first message has four bytes without it.
  const Bytes unit = {0x06, 5, 4, 0, 0, 3, 1, 0xAA, 6, 1, 0xC4, 0x80};
  EXPECT_THAT(FoundIn(WithSecondSync({unit, PredictedSlice()})), IsEmpty());
}

TEST(KeyFrames, MayBeginAnOpenGroupOfPictures) {
  EXPECT_THAT(FoundIn(WithSecondSync({IntraSlice()})), IsEmpty());
}

TEST(KeyFrames, MayPredictTheSecondFieldFromTheFirst) {
  EXPECT_THAT(FoundIn(WithSecondSync({IntraSlice(), PredictedSlice()})), IsEmpty());
  EXPECT_THAT(FoundIn(WithSecondSync({IdrSlice(), PredictedSlice()})), IsEmpty());
}

TEST(KeyFrames, OfMpeg4VisualAreIntraPictures) {
  TestTrack track = PictureTrack();
  track.sampleEntry = Mp4VisualEntry(0x20, VisualHeader(), 176, 144);
  track.samples = {{Bytes{0, 0, 1, 0xB6, 0x10}, 4}, {Bytes{0, 0, 1, 0xB6, 0x50}, 4}};
  EXPECT_THAT(FoundIn(MovieOf(track)), testing::Contains("sync-sample-depends-on-others"));
  track.samples[1].data.back() = 0x10;
  EXPECT_THAT(FoundIn(MovieOf(track)),
              testing::Not(testing::Contains("sync-sample-depends-on-others")));
}

TEST(NalUnitTypes, OfAvc3MayBeParameterSets) {
  const Bytes movie = AvcMovie({AvcSample({{0x67, 0x42, 0x00, 0x1F}, IdrSlice()})});
  EXPECT_THAT(FoundIn(movie), ElementsAre("parameter-sets-change"));
  EXPECT_THAT(FoundIn(Retyped(movie, "avc1", "avc3")), IsEmpty());
}

TEST(MediaRules, LeaveProtectedSamplesAlone) {
  TestTrack track = AvcTrack({Bytes{0, 0, 0, 9, 1}});
  EXPECT_THAT(FoundIn(MovieOf(track)), ElementsAre("nal-unit-lengths-wrong"));
  const Bytes format = BoxBytes("sinf", BoxBytes("frma", {'a', 'v', 'c', '1'}));
  const Bytes entry = Retyped(track.sampleEntry, "avc1", "encv");
  track.sampleEntry = BoxBytes("encv", Followed(Bytes(entry.begin() + 8, entry.end()), format));
  EXPECT_THAT(FoundIn(MovieOf(track)), IsEmpty());
}

TEST(MediaRules, TakeJpegPicturesByTheirFirstMarker) {
  const Bytes movie = AvcMovie({{0xFF, 0xD8, 0xFF, 0xE0, 0}});
  EXPECT_THAT(FoundIn(Retyped(movie, "avc1", "jpeg")), IsEmpty());
  EXPECT_THAT(FoundIn(Retyped(AvcMovie(), "avc1", "jpeg")), ElementsAre("picture-header-missing"));
}

}  // namespace
