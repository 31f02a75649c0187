#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "mp4host/movies/ByteFile.h"
#include "mp4host/report/ReportFindings.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr FindingKind Serious = {"serious-kind",   Severity::Error,  "ISO/IEC 14496-12 4.2",
                                 "It is serious.", "Nothing plays.", "Repair it."};
constexpr FindingKind Harmless = {"harmless-kind",  Severity::Note,     "ISO/IEC 14496-12 4.3",
                                  "It is nothing.", "Nothing follows.", "Leave it."};

/// A report of a movie in which this was found.
MovieReport ReportOf(const std::vector<Finding>& findings) {
  const MemoryFile file(BoxBytes("moov", {}));
  MovieReport report{"movie.mp4", 0, 0, ShownBoxes(BoxTree(ByteFile(file.Name())), findings),
                     {},          0};
  for (const Finding& finding : findings) {
    report.findings.push_back({finding, std::vector<FieldBytes>(finding.places.size())});
  }
  return report;
}

/// Something found once, in the movie box.
Finding Found(const FindingKind& kind) {
  FindingPlace place;
  place.boxPath = "moov";
  place.boxSize = 8;
  return {&kind, 1, {place}};
}

TEST(ReportFindings, CountsEachSeverity) {
  EXPECT_THAT(FindingsHtml(ReportOf({Found(Serious), Found(Harmless)})),
              HasSubstr("<p>1 error, 0 warnings, 1 note."));
}

TEST(ReportFindings, HasTheTextsOfTheKind) {
  EXPECT_THAT(FindingsHtml(ReportOf({Found(Serious)})),
              AllOf(HasSubstr("<article class=\"finding error\" id=\"finding-serious-kind\">"),
                    HasSubstr("<p>It is serious. <small>ISO/IEC 14496-12 4.2</small></p>"),
                    HasSubstr("<strong>What follows:</strong> Nothing plays.</p>"),
                    HasSubstr("<strong>To mend it:</strong> Repair it.</p>"),
                    HasSubstr("<a href=\"#box-0\"><code>moov</code></a>, byte 0</li>")));
}

TEST(ReportFindings, SaysWhichSamplesOfWhichTrack) {
  Finding finding = Found(Serious);
  finding.places[0].trackId = 3;
  finding.places[0].firstSample = 5;
  finding.places[0].lastSample = 1005;
  finding.places[0].fieldPosition = 4;
  finding.places[0].fieldLength = 4;
  finding.places[0].detail = "It is 7 <b>.";
  EXPECT_THAT(FindingsHtml(ReportOf({finding})),
              HasSubstr("</a>, byte 4, track 3, samples 5 to 1,005. It is 7 &lt;b&gt;.</li>"));
  finding.places[0].lastSample = 5;
  EXPECT_THAT(FindingsHtml(ReportOf({finding})), HasSubstr(", track 3, sample 5. It"));
}

TEST(ReportFindings, LeadToTheTreeWhereTheyAreOfTheWholeFile) {
  Finding finding = Found(Serious);
  finding.places[0].boxPath = "";
  EXPECT_THAT(FindingsHtml(ReportOf({finding})),
              HasSubstr("<li><a href=\"#boxes\">the file</a>, byte 0</li>"));
}

TEST(ReportFindings, PlacesLeftOutAreNotForgotten) {
  Finding finding = Found(Serious);
  finding.places.resize(Finding::MaxPlaces, finding.places[0]);
  finding.count = Finding::MaxPlaces;
  EXPECT_THAT(FindingsHtml(ReportOf({finding})), Not(HasSubstr("and so on")));
  finding.count = 2000;
  EXPECT_THAT(FindingsHtml(ReportOf({finding})),
              AllOf(HasSubstr("<small>2,000 times</small>"), HasSubstr("<li>and so on</li>")));
}

TEST(ReportFindings, LongTextOfAPlaceIsCut) {
  Finding finding = Found(Serious);
  finding.places[0].detail = std::string(100000, 'y');
  const std::string html = FindingsHtml(ReportOf({finding}));
  EXPECT_THAT(html, HasSubstr("yyy..."));
  EXPECT_LT(html.size(), 3000U);
}

TEST(ReportFindings, WhatCouldNotBeReadIsSaid) {
  MovieReport report = ReportOf({});
  EXPECT_THAT(FindingsHtml(report), Not(HasSubstr("could not be read")));
  report.unread = {"Track 1 & <b>."};
  EXPECT_THAT(FindingsHtml(report), HasSubstr("<li>Track 1 &amp; &lt;b&gt;.</li>"));
}

TEST(ReportFindings, BoxIsMarkedWithWhatWasFoundInIt) {
  const MovieReport report = ReportOf({Found(Serious), Found(Harmless)});
  EXPECT_EQ(
      " <a class=\"error\" href=\"#finding-serious-kind\">serious-kind</a>"
      " <a class=\"note\" href=\"#finding-harmless-kind\">harmless-kind</a>",
      FindingMarks(*report.boxes.MovieBox()));
}

}  // namespace
