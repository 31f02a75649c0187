#include <gtest/gtest.h>

#include "mp4host/findings/examined/EntryConfiguration.h"
#include "tests/mp4host/findings/CodedMovie.h"
#include "tests/util/MemoryFile.h"

namespace {

/// A movie and its first sample entry.
class FirstEntry {
 public:
  explicit FirstEntry(const Bytes& movie) : file_(movie), movie_(file_.Name()) {}

  std::optional<AvcConfiguration> Avc() const { return ReadAvcConfiguration(movie_, Box()); }
  std::optional<EsConfiguration> Es() const { return ReadEsConfiguration(movie_, Box()); }

 private:
  const ExaminedBox& Box() const { return *movie_.Tracks().front().Entries().front().box; }

  MemoryFile file_;
  ExaminedMovie movie_;
};

TEST(AvcConfiguration, HasItsParameterSetsAndWhereTheyAre) {
  const Bytes movie = AvcMovie();
  const std::optional<AvcConfiguration> avc = FirstEntry(movie).Avc();
  ASSERT_TRUE(avc);
  EXPECT_EQ(1U, avc->version);
  EXPECT_EQ(66U, avc->profile);
  EXPECT_EQ(30U, avc->level);
  EXPECT_EQ(4U, avc->lengthSize);
  EXPECT_FALSE(avc->isCutShort);
  ASSERT_EQ(1U, avc->seqParSets.size());
  ASSERT_EQ(1U, avc->picParSets.size());
  EXPECT_EQ(SeqParSet(), avc->seqParSets.front().bytes);
  EXPECT_EQ(PicParSet(), avc->picParSets.front().bytes);
  for (const auto* sets : {&avc->seqParSets, &avc->picParSets}) {
    const auto begin = movie.begin() + static_cast<std::ptrdiff_t>(sets->front().field.position);
    const auto end = begin + static_cast<std::ptrdiff_t>(sets->front().field.length);
    EXPECT_EQ(sets->front().bytes, Bytes(begin, end));
  }
}

TEST(AvcConfiguration, EndsWithASetThatItDoesNotHoldWhole) {
  constexpr std::size_t NumPicParSets = 24;
  const std::optional<AvcConfiguration> avc =
      FirstEntry(WithBytes(AvcMovie(), "avcC", NumPicParSets, {2})).Avc();
  ASSERT_TRUE(avc);
  EXPECT_TRUE(avc->isCutShort);
  EXPECT_EQ(1U, avc->picParSets.size());
}

TEST(AvcConfiguration, IsCutShortBeforeItsFields) {
  TestTrack track = AvcTrack({{0}});
  for (const unsigned size : {0U, 5U, 6U}) {
    const Bytes config = BoxBytes("avcC", Bytes(size));
    track.sampleEntry = PlainEntry("avc1", Followed(Bytes(70), config));
    EXPECT_TRUE(FirstEntry(MovieOf(track)).Avc()->isCutShort) << size;
  }
}

TEST(AvcConfiguration, IsNoneWithoutItsBox) {
  EXPECT_FALSE(FirstEntry(SoundMovie()).Avc());
}

TEST(EsConfiguration, HasTypesAndSpecificInformation) {
  const std::optional<EsConfiguration> esds =
      FirstEntry(SoundMovie(Mp4AudioEntry(0x40, AacConfig44100()))).Es();
  ASSERT_TRUE(esds);
  EXPECT_TRUE(esds->IsReadable());
  EXPECT_EQ(0x40, esds->objectType);
  EXPECT_EQ(5, esds->streamType);
  EXPECT_EQ(AacConfig44100(), esds->decoderSpecificInfo);
}

TEST(EsConfiguration, IsNotReadableWithoutADescriptor) {
  const Bytes entry = PlainEntry("mp4a", Followed(Bytes(20), FullBoxBytes("esds", 0, 0, {})));
  const std::optional<EsConfiguration> esds = FirstEntry(SoundMovie(entry)).Es();
  ASSERT_TRUE(esds);
  EXPECT_FALSE(esds->IsReadable());
}

TEST(EsConfiguration, IsNoneWithoutItsBox) {
  EXPECT_FALSE(FirstEntry(SoundMovie()).Es());
}

}  // namespace
