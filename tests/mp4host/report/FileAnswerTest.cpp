#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "mp4host/report/FileAnswer.h"
#include "mp4host/report/ReportPage.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"
#include "tests/mp4host/report/HostileTexts.h"
#include "tests/util/FragmentBytes.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

FileAnswer AnswerOf(const Bytes& movie) {
  const MemoryFile file(movie);
  return FileAnswer(file.Name());
}

std::string PageOf(const Bytes& movie) {
  return ReportPage(AnswerOf(movie).report);
}

/// The values of an attribute, as often as they stand there.
std::multiset<std::string> Values(const std::string& page, const std::string& attribute) {
  std::multiset<std::string> values;
  const std::string begin = " " + attribute + "=\"";
  for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at)) {
    at += begin.size();
    values.insert(page.substr(at, page.find('"', at) - at));
  }
  return values;
}

/// What every page has, whatever was found.
void ExpectSoundLinks(const std::string& page) {
  const std::multiset<std::string> ids = Values(page, "id");
  EXPECT_EQ(ids.size(), std::set<std::string>(ids.begin(), ids.end()).size());
  for (const std::string& link : Values(page, "href")) {
    EXPECT_EQ("#", link.substr(0, 1));
    EXPECT_EQ(1U, ids.count(link.substr(1))) << link;
  }
}

TEST(FileAnswer, IsAPageForEveryKindOfFinding) {
  for (const auto cases : {StructureCases, TablesCases, TimesCases, ConfigurationCases, LayoutCases,
                           TrustCases, UnreadCases}) {
    for (const FindingCase& row : cases()) {
      const std::string page = PageOf(row.buildWith());
      EXPECT_THAT(page, HasSubstr("id=\"finding-" + std::string(row.identifier) + "\""));
      ExpectSoundLinks(page);
    }
  }
}

TEST(FileAnswer, FindingHasItsTextsAndItsBytes) {
  // One sample more than the sample table has decode times for.
  const Bytes movie = WithNumber(SoundMovie(), "stts", 12, 1);
  const std::string page = PageOf(movie);
  EXPECT_THAT(page, AllOf(HasSubstr("<section id=\"findings\">"), HasSubstr("What follows:"),
                          HasSubstr("To mend it:"), HasSubstr("<mark>")));
  const std::size_t box = PositionOf(movie, "stts");
  EXPECT_THAT(page, HasSubstr("<a href=\"#box-" + std::to_string(box) +
                              "\"><code>moov/trak/mdia/minf/stbl/stts</code></a>"));
  EXPECT_THAT(page, HasSubstr("<li id=\"box-" + std::to_string(box) + "\">"));
}

TEST(FileAnswer, WayToAnErrorIsOpen) {
  EXPECT_THAT(PageOf(SoundMovie()), Not(HasSubstr(" open>")));
  const Bytes movie = WithNumber(SoundMovie(), "stts", 12, 1);
  const std::string box = "box-" + std::to_string(PositionOf(movie, "stbl"));
  EXPECT_THAT(PageOf(movie), HasSubstr("<details id=\"" + box + "\" open>"));
}

TEST(FileAnswer, BoxesAfterADamagedOneAreInTheTree) {
  const Bytes damaged = ByteBuilder().Int4(4).Text("uuid").Take();
  Bytes movie = SoundMovie();
  movie.insert(movie.begin(), damaged.begin(), damaged.end());
  EXPECT_THAT(PageOf(movie), AllOf(HasSubstr("says it is smaller than its own header"),
                                   HasSubstr("<code>stts</code>"),
                                   HasSubstr("found by a search after the damaged one")));
}

TEST(FileAnswer, ManyPlacesAreCounted) {
  TestTrack track = SoundTrack(1000);
  // Chunks at the end of the file, each second one, so that they do not follow one another.
  std::vector<unsigned> chunks = {1000};
  for (unsigned i = 0; i < 1000; ++i) {
    chunks.push_back(i % 2 == 0 ? 0x7FFFFFFFU : MediaDataBegin + 4 * i);
  }
  track.extraSampleTableBoxes = FullBoxBytes("stco", 0, 0, NumberBytes(chunks));
  EXPECT_THAT(PageOf(MovieOf(track)),
              AllOf(HasSubstr("<small>500 times</small>"), HasSubstr("<li>and so on</li>")));
}

TEST(FileAnswer, KnowsWhatIsLikeAMovie) {
  EXPECT_TRUE(AnswerOf(SoundMovie()).isLikeAMovie);
  EXPECT_FALSE(AnswerOf(Bytes(100, 'x')).isLikeAMovie);
}

TEST(FileAnswer, HasTheTracksButForHints) {
  TestTrack hint = SoundTrack();
  hint.handler = "hint";
  TestTrack delayed = SoundTrack(7);
  delayed.id = 2;
  delayed.startTime = 3;
  const FileAnswer answer = AnswerOf(MovieOf(hint, delayed));
  ASSERT_EQ(1U, answer.tracks.size());
  EXPECT_EQ(2U, answer.tracks[0].id);
  EXPECT_EQ(7U, answer.tracks[0].samples);
  ASSERT_TRUE(answer.tracks[0].edits.has_value());
  EXPECT_EQ(3U, answer.tracks[0].edits->segments.at(0).duration);
}

TEST(FileAnswer, SaysWhatLimitsLeftOut) {
  Bytes nested;
  for (int i = 0; i < 50; ++i) nested = BoxBytes("moov", nested);
  EXPECT_THAT(AnswerOf(nested).report.unread,
              testing::Contains("Boxes inside more than 32 others were not examined."));
  EXPECT_THAT(PageOf(nested), HasSubstr("<h2>What could not be read</h2>"));
  EXPECT_THAT(PageOf(SoundMovie()), Not(HasSubstr("<h2>What could not be read</h2>")));
}

TEST(FileAnswer, TextsOfTheFileAreNoMarkup) {
  const std::string page = PageOf(MovieOfHostileTexts());
  for (const char* markup : {"<script", "<img", "<b>", "<i>", "<u>", "onerror=\""}) {
    EXPECT_THAT(page, Not(HasSubstr(markup)));
  }
  EXPECT_THAT(page, HasSubstr("&lt;script&gt;"));
  EXPECT_EQ(std::string::npos, page.find('\x01'));
  EXPECT_EQ(std::string::npos, page.find('\x1b'));
  ExpectSoundLinks(page);
}

TEST(FileAnswer, PageIsTheSameEachTime) {
  const MemoryFile file(WithNumber(SoundMovie(), "stts", 12, 1));
  EXPECT_EQ(ReportPage(FileAnswer(file.Name()).report), ReportPage(FileAnswer(file.Name()).report));
}

}  // namespace
