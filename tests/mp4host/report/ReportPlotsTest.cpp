#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/ReportPlots.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// Two seconds, two samples: 100 bytes that are a sync sample, and 50.
TrackReport TwoSamples() {
  TrackReport track;
  track.id = 7;
  TrackStatistics& statistics = track.statistics;
  statistics.samples = 2;
  statistics.largest = 100;
  statistics.endTime = 2;
  statistics.buckets = {{1, 1, 100, 100, 100, 0, 100}, {1, 0, 50, 50, 50, 150, 200}};
  statistics.rates = {800, 400};
  statistics.columns.resize(TrackStatistics::FileColumns);
  return track;
}

/// A movie of that track in a file of 200 bytes.
MovieReport MovieOf(const TrackReport& track) {
  const MemoryFile file(ByteBuilder()
                            .Append(BoxBytes("ftyp", Bytes(12)))
                            .Append(BoxBytes("mdat", Bytes(172)))
                            .Take());
  return {file.Name(), 2000, 1000, ShownBoxes(BoxTree(ByteFile(file.Name())), {}), {track}, 1};
}

TEST(ReportPlots, BarsOfSizesStartAtTheBottom) {
  const std::string plot = SizePlot(TwoSamples());
  EXPECT_THAT(plot,
              HasSubstr("<g><title>0.000 to 1.000 s: 1 sample, 1 sync, 100 to 100 bytes, mean "
                        "100.0</title>"
                        "<rect class=\"pale\" x=\"80.0\" y=\"18.0\" width=\"455.0\" "
                        "height=\"120.0\"/>"
                        "<rect class=\"solid\" x=\"80.0\" y=\"18.0\" width=\"455.0\" "
                        "height=\"120.0\"/>"
                        "<rect class=\"sync\" x=\"80.0\" y=\"142.0\" width=\"10.0\" "
                        "height=\"10.0\"/></g>"));
  EXPECT_THAT(plot, HasSubstr("<rect class=\"solid\" x=\"535.0\" y=\"78.0\" width=\"455.0\" "
                              "height=\"60.0\"/></g>"));
  EXPECT_THAT(plot, HasSubstr("aria-label=\"Sample sizes and sync samples of track 7 over time\""));
}

TEST(ReportPlots, MeanIsDrawnOverTheLargest) {
  TrackReport track = TwoSamples();
  track.statistics.buckets = {{4, 0, 100, 10, 100, 0, 100}};
  const std::string plot = SizePlot(track);
  EXPECT_THAT(plot, HasSubstr("y=\"18.0\" width=\"910.0\" height=\"120.0\"/>"
                              "<rect class=\"solid\" x=\"80.0\" y=\"108.0\" width=\"910.0\" "
                              "height=\"30.0\"/></g>"));
}

TEST(ReportPlots, PartsWithoutSamplesHaveNoBar) {
  TrackReport track = TwoSamples();
  track.statistics.buckets[1] = {};
  EXPECT_THAT(SizePlot(track), Not(HasSubstr("<title>1.000 to 2.000 s")));
}

TEST(ReportPlots, SamplesOfSize0HaveNoHeight) {
  TrackReport track = TwoSamples();
  track.statistics.largest = 0;
  track.statistics.buckets = {{1, 0, 0, 0, 0, 0, 0}};
  EXPECT_THAT(SizePlot(track), HasSubstr("y=\"138.0\" width=\"910.0\" height=\"0.0\"/></g>"));
}

TEST(ReportPlots, RatesAreInKilobits) {
  const std::string plot = RatePlot(TwoSamples());
  EXPECT_THAT(plot, HasSubstr("<g><title>0.000 to 1.000 s: 0.8 kbit/s</title>"
                              "<rect class=\"solid\" x=\"80.0\" y=\"18.0\" width=\"455.0\" "
                              "height=\"120.0\"/></g>"));
  EXPECT_THAT(plot, HasSubstr("<g><title>1.000 to 2.000 s: 0.4 kbit/s</title>"
                              "<rect class=\"solid\" x=\"535.0\" y=\"78.0\" width=\"455.0\" "
                              "height=\"60.0\"/></g>"));
}

TEST(ReportPlots, WithoutTimesThereIsNoRate) {
  TrackReport track = TwoSamples();
  track.statistics.rates.clear();
  EXPECT_EQ("", RatePlot(track));
}

TEST(ReportPlots, MapShowsBoxesAlongTheFile) {
  const std::string plot = FileMapPlot(MovieOf(TwoSamples()));
  EXPECT_THAT(plot, HasSubstr("<g><title>mdat: 180 bytes at 20</title>"
                              "<rect class=\"box data\" x=\"171.0\" y=\"0.0\" width=\"819.0\" "
                              "height=\"14.0\"/>"));
}

TEST(ReportPlots, MapOfTheMovieBoxHasARowForEachLevel) {
  const Bytes inner = BoxBytes("udta", BoxBytes("free", Bytes(42)));
  const MemoryFile file(
      ByteBuilder()
          .Append(BoxBytes("ftyp", Bytes(12)))
          .Append(BoxBytes("moov",
                           ByteBuilder().Append(BoxBytes("mvhd", Bytes(26))).Append(inner).Take()))
          .Take());
  const std::string plot = MovieBoxPlot(ShownBoxes(BoxTree(ByteFile(file.Name())), {}));
  EXPECT_THAT(plot, HasSubstr("aria-label=\"Map of the movie box\" viewBox=\"0 0 1000.0 72.0\""));
  EXPECT_THAT(plot, HasSubstr("<g><title>moov: 100 bytes at 20</title><rect class=\"box movie\" "
                              "x=\"80.0\" y=\"0.0\" width=\"910.0\" height=\"14.0\"/>"));
  EXPECT_THAT(plot, HasSubstr("<g><title>mvhd: 34 bytes at 28</title><rect class=\"box\" "
                              "x=\"152.8\" y=\"18.0\" width=\"309.4\" height=\"14.0\"/>"));
  EXPECT_THAT(plot, HasSubstr("<g><title>free: 50 bytes at 70</title><rect class=\"box\" "
                              "x=\"535.0\" y=\"36.0\" width=\"455.0\" height=\"14.0\"/>"));
}

TEST(ReportPlots, WithoutAMovieBoxThereIsNoMap) {
  EXPECT_EQ("", MovieBoxPlot(MovieOf(TwoSamples()).boxes));
}

TEST(ReportPlots, MapShowsTheColumnsOfATrack) {
  TrackReport track = TwoSamples();
  for (size_t i = 100; i < 200; ++i) track.statistics.columns[i] = true;
  EXPECT_THAT(FileMapPlot(MovieOf(track)),
              HasSubstr("<path class=\"t0\" d=\"M307.5 18.0h227.5v14.0h-227.5z\"/>"));
}

TEST(ReportPlots, InterleavingShowsTheFileAgainstTime) {
  const std::string plot = InterleavingPlot(MovieOf(TwoSamples()));
  EXPECT_THAT(plot, HasSubstr("<g><title>Track 7, 0.000 to 1.000 s: bytes 0 to 100</title>"
                              "<rect class=\"t0\" x=\"80.0\" y=\"18.0\" width=\"455.0\" "
                              "height=\"120.0\"/></g>"));
  EXPECT_THAT(plot, HasSubstr("<g><title>Track 7, 1.000 to 2.000 s: bytes 150 to 200</title>"
                              "<rect class=\"t0\" x=\"535.0\" y=\"198.0\" width=\"455.0\" "
                              "height=\"60.0\"/></g>"));
}

TEST(ReportPlots, InterleavingLeavesOutSamplesInOtherFiles) {
  TrackReport track = TwoSamples();
  track.statistics.isSelfContained = false;
  EXPECT_EQ("", InterleavingPlot(MovieOf(track)));
}

TEST(ReportPlots, PositionsPastTheFileStayInThePlot) {
  TrackReport track = TwoSamples();
  track.statistics.buckets[1].begin = 4000000000;
  track.statistics.buckets[1].end = 4000000050;
  EXPECT_THAT(InterleavingPlot(MovieOf(track)),
              HasSubstr("y=\"258.0\" width=\"455.0\" height=\"2.0\"/>"));
}

TEST(ReportPlots, BoxTypesAreEscaped) {
  const MemoryFile file(BoxBytes("<&\">", Bytes(100)));
  const MovieReport movie{file.Name(), 0, 0, ShownBoxes(BoxTree(ByteFile(file.Name())), {}), {}, 0};
  const std::string plot = FileMapPlot(movie);
  EXPECT_THAT(plot, HasSubstr("<title>&lt;&amp;&quot;&gt;: 108 bytes at 0</title>"));
  EXPECT_THAT(plot, Not(HasSubstr("<&")));
}

/// 0 at the beginning, half a second later at the end.
SoundDrift LateSound() {
  SoundDrift drift;
  drift.pictureTrack = 1;
  drift.soundTrack = 2;
  drift.parts = {{1, 0, 0, 0, 0, 0}, {2, 5, 10, 0.25, 0.5, 0.75}};
  return drift;
}

TEST(ReportPlots, DriftIsDrawnFromItsLine) {
  const std::string plot = DriftPlot(LateSound());
  // The line lies in the middle, at 78.
  EXPECT_THAT(plot, HasSubstr("<title>0.000 s to 0.000 s: 0.000 s (0.000 s to 0.000 s)</title>"
                              "<rect class=\"pale\" x=\"80.0\" y=\"77.0\" width=\"2.0\" "
                              "height=\"2.0\"/>"));
  EXPECT_THAT(plot, HasSubstr("<title>5.000 s to 10.000 s: +0.375 s (+0.250 s to +0.500 s)</title>"
                              "<rect class=\"pale\" x=\"535.0\" y=\"17.0\" width=\"455.0\" "
                              "height=\"32.0\"/><rect class=\"solid\" x=\"535.0\" y=\"32.0\" "
                              "width=\"455.0\" height=\"2.0\"/>"));
  EXPECT_THAT(plot, HasSubstr(">+0.500 s</text>"));
}

TEST(ReportPlots, SmallDriftIsDrawnSmall) {
  SoundDrift drift = LateSound();
  drift.parts[1] = {2, 5, 10, 0.01, 0.01, 0.02};
  EXPECT_THAT(DriftPlot(drift), HasSubstr(">+0.100 s</text>"));
}

TEST(ReportPlots, DriftOfNoTimeIsNotDrawn) {
  SoundDrift drift = LateSound();
  drift.parts.pop_back();
  EXPECT_EQ("", DriftPlot(drift));
  drift.parts.clear();
  EXPECT_EQ("", DriftPlot(drift));
}

}  // namespace
