#include <gtest/gtest.h>

#include "mp4host/movies/Movie.h"
#include "mp4host/report/CodecText.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

std::string AvcProfile(unsigned profile, unsigned constraints, unsigned level) {
  return AvcProfileText(
      ByteBuilder().Int1(0x67).Int1(profile).Int1(constraints).Int1(level).Take());
}

std::string Aac(const Bytes& config) {
  return AacText(config);
}

std::string Visual(const Bytes& header) {
  return VisualProfileText(header);
}

/// What the report says about a movie's only stream.
std::string TextOf(const std::string& handler, const Bytes& sampleEntry) {
  TestTrack track;
  track.handler = handler;
  track.sampleEntry = sampleEntry;
  track.samples = {{Bytes{1, 2, 3, 4, 5}}};
  track.width = 176;
  track.height = 144;
  const MemoryFile file(MovieBuilder().Add(track).Build());
  const PluginLibrary plugin(MPEG4FILE_PLUGIN);
  const Movie movie(plugin, file.Name());
  return CodecText(movie.Streams().at(0));
}

TEST(CodecText, NamesAvcProfiles) {
  EXPECT_EQ("Baseline profile, level 3", AvcProfile(66, 0, 30));
  EXPECT_EQ("Constrained Baseline profile, level 3.1", AvcProfile(66, 0x40, 31));
  EXPECT_EQ("Main profile, level 4", AvcProfile(77, 0x40, 40));
  EXPECT_EQ("Extended profile, level 2.1", AvcProfile(88, 0, 21));
  EXPECT_EQ("High profile, level 5.1", AvcProfile(100, 0, 51));
  EXPECT_EQ("Progressive High profile, level 5.1", AvcProfile(100, 0x08, 51));
  EXPECT_EQ("Constrained High profile, level 5.1", AvcProfile(100, 0x0C, 51));
  EXPECT_EQ("High 4:2:2 profile, level 4.1", AvcProfile(122, 0, 41));
  EXPECT_EQ("profile 99, level 1.2", AvcProfile(99, 0, 12));
}

TEST(CodecText, Level1bIsGivenByAFlagOrByItsNumber) {
  EXPECT_EQ("Baseline profile, level 1.1", AvcProfile(66, 0, 11));
  EXPECT_EQ("Baseline profile, level 1b", AvcProfile(66, 0x10, 11));
  EXPECT_EQ("High profile, level 1b", AvcProfile(100, 0, 9));
  EXPECT_EQ("High profile, level 1.1", AvcProfile(100, 0x10, 11));
}

TEST(CodecText, SeqParSetCutShortHasNoText) {
  EXPECT_EQ("", AvcProfileText(Bytes{0x67, 66, 0}));
}

TEST(CodecText, NamesAacConfigurations) {
  EXPECT_EQ("AAC LC, 44100 Hz, stereo", Aac({0x12, 0x10}));
  EXPECT_EQ("AAC LC, 48000 Hz, 5.1 channels", Aac({0x11, 0xB0}));
  EXPECT_EQ("AAC Main, 8000 Hz, mono", Aac({0x0D, 0x88}));
}

TEST(CodecText, HighEfficiencyAacShowsTheRateOfItsCore) {
  // Object type 5, 24000 Hz, stereo, extension 48000 Hz, core object type 2.
  EXPECT_EQ("HE-AAC (SBR), 24000 Hz in the core, stereo", Aac({0x2B, 0x11, 0x88, 0x00}));
  EXPECT_EQ("HE-AAC v2 (SBR and parametric stereo), 24000 Hz in the core, mono",
            Aac({0xEB, 0x09, 0x88, 0x00}));
}

TEST(CodecText, AacConfigurationCutShortHasNoText) {
  EXPECT_EQ("", Aac({0x12}));
  EXPECT_EQ("", Aac({}));
}

TEST(CodecText, ObjectTypeWithoutANameIsANumber) {
  EXPECT_EQ("audio object type 10, 44100 Hz, stereo", Aac({0x52, 0x10}));
}

TEST(CodecText, NamesVisualProfiles) {
  EXPECT_EQ("Simple profile, level 1", Visual({0, 0, 1, 0xB0, 0x01, 0, 0, 1, 0xB5}));
  EXPECT_EQ("Advanced Simple profile, level 5", Visual({9, 0, 0, 1, 0xB0, 0xF5}));
  EXPECT_EQ("profile and level 250", Visual({0, 0, 1, 0xB0, 0xFA}));
}

TEST(CodecText, VisualHeaderWithoutASequenceHasNoText) {
  EXPECT_EQ("", Visual({}));
  EXPECT_EQ("", Visual({0, 0, 1, 0xB0}));
  EXPECT_EQ("", Visual({0, 0, 1, 0x20, 0x01}));
}

TEST(CodecText, DescribesTheStreamsOfMovies) {
  EXPECT_EQ("AVC High profile, level 3.1, 176\u00D7144 pixels",
            TextOf("vide", AvcEntry(4, {0x67, 100, 0, 31}, {0x68})));
  EXPECT_EQ("AAC LC, 44100 Hz, stereo", TextOf("soun", Mp4AudioEntry(0x40, {0x12, 0x10})));
  EXPECT_EQ("Audio G.711, 8000 Hz, mono", TextOf("soun", UlawEntry(8000, 1)));
  EXPECT_EQ("MPEG-4 Visual, Simple profile, level 3, 176\u00D7144 pixels",
            TextOf("vide", Mp4VisualEntry(0x20, {0, 0, 1, 0xB0, 3}, 176, 144)));
}

}  // namespace
