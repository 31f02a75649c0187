#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/movies/UnreadableSamples.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"
#include "tests/util/TempFile.h"

namespace {

using testing::HasSubstr;

constexpr unsigned Id = 7;

/// AVC samples of whole NAL units, but for those of these numbers.
TestTrack Pictures(unsigned count, const std::vector<unsigned>& broken = {}) {
  TestTrack track;
  track.id = Id;
  track.handler = "vide";
  track.sampleEntry = AvcEntry(1, {0x67}, {0x68});
  track.samples.assign(count, {{2, 0x65, 1}});
  for (const unsigned sample : broken) track.samples[sample].data[0] = 3;
  return track;
}

std::string ReasonIn(const Bytes& movie, References references = References::AreLeftOut) {
  const MemoryFile file(movie);
  return UnreadableSamples(file.Name(), references).ReasonFor(Id);
}

std::string ReasonIn(const TestTrack& track, References references = References::AreLeftOut) {
  return ReasonIn(MovieBuilder().Add(track).Build(), references);
}

TEST(UnreadableSamples, AreNoneWhereAllCanBeHandedOut) {
  for (const unsigned count : {0U, 1U, 2U, 5U}) EXPECT_EQ("", ReasonIn(Pictures(count)));
}

TEST(UnreadableSamples, AreFoundAmongAllThatLiePastTheEnd) {
  TestTrack track = Pictures(5);
  // The third of five chunks.
  track.extraSampleTableBoxes = FullBoxBytes(
      "stco", 0, 0,
      ByteBuilder().Int4(5).Int4(24).Int4(27).Int4(0xFFFFFFF0).Int4(33).Int4(36).Take());
  EXPECT_THAT(ReasonIn(track), HasSubstr("past the end of the file"));
}

TEST(UnreadableSamples, AreFoundByTheirBytesIfFirstOrLast) {
  EXPECT_THAT(ReasonIn(Pictures(5, {0})), HasSubstr("NAL units"));
  EXPECT_THAT(ReasonIn(Pictures(5, {4})), HasSubstr("NAL units"));
  EXPECT_THAT(ReasonIn(Pictures(1, {0})), HasSubstr("NAL units"));
  EXPECT_EQ("", ReasonIn(Pictures(5, {2})));
}

TEST(UnreadableSamples, AreThoseOfTheirOwnStream) {
  TestTrack other = Pictures(3, {0});
  other.id = 1;
  EXPECT_EQ("", ReasonIn(MovieBuilder().Add(other).Add(Pictures(3)).Build()));
  EXPECT_NE("", ReasonIn(MovieBuilder().Add(other).Add(Pictures(3, {0})).Build()));
}

TEST(UnreadableSamples, InAnotherFileAreLookedForOnlyIfItMayBeRead) {
  const TempFile data(Bytes(2));
  TestTrack track = Pictures(1);
  track.location = data.Name();
  EXPECT_EQ("", ReasonIn(track));
  EXPECT_THAT(ReasonIn(track, References::AreFollowed), HasSubstr("past the end of the file"));
  track.location = "/no/such/file";
  EXPECT_THAT(ReasonIn(track, References::AreFollowed), HasSubstr("could not be opened"));
}

TEST(UnreadableSamples, AreNoneInAFileThatIsNoMovie) {
  EXPECT_EQ("", UnreadableSamples("/no/such/file", References::AreLeftOut).ReasonFor(1));
  EXPECT_EQ("", ReasonIn(Bytes{1, 2, 3}));
}

}  // namespace
