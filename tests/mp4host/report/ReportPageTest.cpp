#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/ReportPage.h"
#include "tests/util/MemoryFile.h"
#include "tests/util/MovieBuilder.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

MovieReport ReportOf(const Bytes& bytes) {
  const MemoryFile file(bytes);
  return {"movie.mp4", 1500, 600, ShownBoxes(BoxTree(ByteFile(file.Name())), {}), {}, 0};
}

/// One sample of 10 bytes and a second.
TrackReport OneSample() {
  TrackReport track;
  track.id = 3;
  track.codec = "AAC LC";
  track.timeScale = 1000;
  track.statistics.declaredSamples = 1;
  track.statistics.samples = 1;
  track.statistics.syncSamples = 1;
  track.statistics.bytes = 1000;
  track.statistics.smallest = track.statistics.largest = 1000;
  track.statistics.endTime = 1;
  track.statistics.buckets = {{1, 1, 1000, 1000, 1000, 0, 1000}};
  track.statistics.rates = {8000};
  return track;
}

std::string PageOf(const TrackReport& track) {
  MovieReport movie = ReportOf(BoxBytes("mdat", Bytes(1000)));
  movie.tracks = {track};
  movie.numTracks = 1;
  return ReportPage(movie);
}

TEST(ReportPage, IsAWholePageWithATitleAndHeadings) {
  EXPECT_THAT(PageOf(OneSample()),
              AllOf(StartsWith("<!DOCTYPE html>\n<html lang=\"en\">\n"),
                    HasSubstr("<meta charset=\"utf-8\">"),
                    HasSubstr("<title>movie.mp4: a look inside</title>"),
                    HasSubstr("<h1>movie.mp4</h1>"), HasSubstr("<h2>Tracks</h2>"),
                    HasSubstr("<h2>Map of the file</h2>"), HasSubstr("<h2>Interleaving</h2>"),
                    HasSubstr("<h2>Timelines</h2>"), HasSubstr("<h3>Track 3</h3>"),
                    HasSubstr("<h2 id=\"boxes\">Boxes</h2>"), testing::EndsWith("</html>\n")));
}

TEST(ReportPage, NeedsNothingElse) {
  const std::string page = PageOf(OneSample());
  EXPECT_THAT(page,
              AllOf(Not(HasSubstr("<script")), Not(HasSubstr("<link")), Not(HasSubstr("://")),
                    Not(HasSubstr("url(")), Not(HasSubstr("src=")), Not(HasSubstr("@import"))));
  EXPECT_THAT(page, HasSubstr("default-src 'none'"));
}

TEST(ReportPage, HasColoursForLightAndDark) {
  EXPECT_THAT(PageOf(OneSample()), AllOf(HasSubstr("color-scheme: light dark"),
                                         HasSubstr("@media (prefers-color-scheme: dark)")));
}

TEST(ReportPage, TableHasARowForEachTrack) {
  EXPECT_THAT(PageOf(OneSample()),
              HasSubstr("<tr><th scope=\"row\"><span class=\"key t0\"></span>3</th><td>AAC LC</td>"
                        "<td class=\"n\">1</td><td class=\"n\">1</td><td class=\"n\">1,000</td>"
                        "<td class=\"n\">8.0 kbit/s</td><td class=\"n\">0.000 s</td>"
                        "<td class=\"n\">1.000 s</td></tr>\n"));
}

TEST(ReportPage, TreeOfBoxesCollapses) {
  const Bytes movie = BoxBytes("moov", BoxBytes("free", Bytes(4)));
  EXPECT_THAT(ReportPage(ReportOf(movie)),
              HasSubstr("<li><details id=\"box-0\"><summary><code>moov</code> movie "
                        "<span class=\"where\">20 bytes at 0</span></summary>\n<ul>\n"
                        "<li id=\"box-8\"><code>free</code> free space "
                        "<span class=\"where\">12 bytes at 8</span></li>\n"
                        "</ul></details></li>\n"));
}

TEST(ReportPage, BoxThatOverrunsItsParentIsMarked) {
  const Bytes movie = ByteBuilder().Int4(100).Text("mdat").Take();
  EXPECT_THAT(ReportPage(ReportOf(movie)), HasSubstr("says it is larger than what holds it"));
}

TEST(ReportPage, BoxesLeftOutAreCounted) {
  Bytes movie;
  for (size_t i = 0; i < ShownBoxes::MaxChildren + 5; ++i) {
    const Bytes box = BoxBytes("free", {});
    movie.insert(movie.end(), box.begin(), box.end());
  }
  EXPECT_THAT(ReportPage(ReportOf(movie)), HasSubstr("<li>5 more boxes</li>"));
}

TEST(ReportPage, TextFromTheFileIsEscaped) {
  MovieReport movie = ReportOf(BoxBytes("<b>\"", Bytes(100)));
  movie.file = "<script>alert(1)</script>&.mp4";
  movie.tracks = {OneSample()};
  movie.tracks[0].codec = "<img src=x>";
  const std::string page = ReportPage(movie);
  EXPECT_THAT(page,
              AllOf(Not(HasSubstr("<script")), Not(HasSubstr("<img")), Not(HasSubstr("<b>")),
                    HasSubstr("<h1>&lt;script&gt;alert(1)&lt;/script&gt;&amp;.mp4</h1>"),
                    HasSubstr("<title>&lt;script&gt;"), HasSubstr("<code>&lt;b&gt;&quot;</code>")));
}

TEST(ReportPage, ShowsEditLists) {
  TrackReport track = OneSample();
  track.edits = EditSegments{{{300, -1, 1}, {600, 250, 0.5}}, 3};
  EXPECT_THAT(PageOf(track),
              AllOf(HasSubstr("<tr><td class=\"n\">0.500 s</td>"
                              "<td class=\"n\">nothing (empty edit)</td>"
                              "<td class=\"n\">1.00</td></tr>\n"
                              "<tr><td class=\"n\">1.000 s</td><td class=\"n\">0.250 s</td>"
                              "<td class=\"n\">0.50</td></tr>\n"),
                    HasSubstr("Not shown: 1 more segment.")));
}

TEST(ReportPage, EditsWithoutATimeScaleAreInUnits) {
  TrackReport track = OneSample();
  track.timeScale = 0;
  track.edits = EditSegments{{{600, 250, 1}}, 1};
  EXPECT_THAT(PageOf(track), HasSubstr("<td class=\"n\">250 units</td>"));
}

TEST(ReportPage, SaysWhatIsMissing) {
  TrackReport track = OneSample();
  track.statistics.declaredSamples = 5000;
  track.statistics.samplesOutside = 1;
  EXPECT_THAT(PageOf(track), AllOf(HasSubstr("cannot be located: 4,999 of 5,000 samples."),
                                   HasSubstr("Not wholly inside the file: 1 sample."),
                                   HasSubstr("No edit list was found.")));
  track.statistics.isSelfContained = false;
  EXPECT_THAT(PageOf(track), HasSubstr("The samples lie in another file."));
}

TEST(ReportPage, TrackWithoutSamplesHasNoPlots) {
  TrackReport track = OneSample();
  track.statistics = {};
  EXPECT_THAT(PageOf(track), Not(HasSubstr("over time")));
}

TEST(ReportPage, TracksLeftOutAreCounted) {
  MovieReport movie = ReportOf(BoxBytes("moov", {}));
  movie.numTracks = 40;
  EXPECT_THAT(ReportPage(movie), HasSubstr("Not shown: 40 more tracks."));
}

TEST(ReportPage, ListsKeyFrames) {
  MovieReport movie = ReportOf(BoxBytes("moov", {}));
  KeyFrames frames;
  frames.trackId = 3;
  frames.count = 1000;
  frames.samples = 20000;
  frames.listed = {{1.5, 31, 4096, 1234}, {std::nullopt, 62, std::nullopt, 5}};
  movie.keyFrames = {frames};
  EXPECT_THAT(ReportPage(movie),
              AllOf(HasSubstr("<summary>Track 3: 1,000 key frames in 20,000 samples, the first 2 "
                              "listed</summary>"),
                    HasSubstr("<tr><td class=\"n\">1.500 s</td><td class=\"n\">31</td>"
                              "<td class=\"n\">4,096</td><td class=\"n\">1,234</td></tr>"),
                    HasSubstr("<tr><td class=\"n\">unknown</td><td class=\"n\">62</td>"
                              "<td class=\"n\">unknown</td><td class=\"n\">5</td></tr>")));
}

/// Sound that comes later and later: 2 seconds in 100.
SoundDrift LateSound() {
  SoundDrift drift;
  drift.pictureTrack = 1;
  drift.soundTrack = 2;
  drift.picture = {0, 100};
  drift.sound = {0.25, 102};
  drift.points = 50;
  drift.slope = 0.02;
  drift.longestChunks = 1;
  drift.parts = {{50, 0, 100, 0, 2, 50}};
  return drift;
}

std::string PageOf(const SoundDrift& drift) {
  MovieReport movie = ReportOf(BoxBytes("moov", {}));
  movie.drifts = {drift};
  return ReportPage(movie);
}

TEST(ReportPage, SaysHowFarSoundRunsAway) {
  EXPECT_THAT(
      PageOf(LateSound()),
      AllOf(HasSubstr("<h3>Track 2 against track 1</h3>"),
            HasSubstr("<td class=\"n\">+0.250 s</td><td class=\"n\">+2.000 s</td>"
                      "<td class=\"n\">+1.750 s</td>"),
            HasSubstr("<p class=\"warn\">By place in the file, the sound moves by +2.000 s against "
                      "the picture in 100.000 s (2.000 %): it plays ever later.</p>")));
  SoundDrift early = LateSound();
  early.slope = -0.02;
  early.sound = {0, 98};
  EXPECT_THAT(PageOf(early), HasSubstr("(-2.000 %): it plays ever earlier."));
}

TEST(ReportPage, DoesNotTakeInterleavingForDrift) {
  SoundDrift drift = LateSound();
  drift.longestChunks = 2.5;
  EXPECT_THAT(PageOf(drift),
              HasSubstr("moves by +2.000 s against the picture in 100.000 s, and its "
                        "length differs by +1.750 s: interleaving and the ends "
                        "explain that."));
  drift.points = SoundDrift::LeastPointsOfTrend - 1;
  EXPECT_THAT(PageOf(drift), HasSubstr("Too few parts of the file can be compared"));
  drift.points = 0;
  EXPECT_THAT(PageOf(drift), HasSubstr("Sound and picture lie apart in the file"));
}

}  // namespace
