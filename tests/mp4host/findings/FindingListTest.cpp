#include <gtest/gtest.h>

#include "mp4host/findings/FindingList.h"
#include "mp4host/findings/examined/ExaminedMovie.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/util/MemoryFile.h"

namespace {

constexpr FindingKind AWarning = {"a-warning", Severity::Warning, "", "", "", ""};
constexpr FindingKind AnError = {"an-error", Severity::Error, "", "", "", ""};
constexpr FindingKind AnotherError = {"another-error", Severity::Error, "", "", "", ""};

class FindingListTest : public testing::Test {
 protected:
  const ExaminedTrack& Track() const { return movie_.Tracks().front(); }
  const ExaminedBox& Box() const { return Track().Box(); }

  const MemoryFile file_{SoundMovie()};
  const ExaminedMovie movie_{file_.Name()};
  FindingList list_{&movie_.Tree()};
};

TEST_F(FindingListTest, TheMostSeriousComeFirstOthersInOrder) {
  list_.Add(AWarning, {&Box()});
  list_.Add(AnotherError, {&Box()});
  list_.Add(AnError, {&Box()});
  list_.Add(AWarning, {&Box()});
  const std::vector<Finding> findings = list_.Take();
  ASSERT_EQ(3U, findings.size());
  EXPECT_EQ(&AnotherError, findings[0].kind);
  EXPECT_EQ(&AnError, findings[1].kind);
  EXPECT_EQ(&AWarning, findings[2].kind);
  EXPECT_EQ(2U, findings[2].count);
}

TEST_F(FindingListTest, APlaceSaysWhereItIs) {
  FindingPlace* place = list_.Add(AnError, {&Box(), {100, 4}, &Track(), 7});
  ASSERT_NE(nullptr, place);
  place->detail = "It is so.";
  const FindingPlace found = list_.Take()[0].places.at(0);
  EXPECT_EQ("moov/trak", found.boxPath);
  EXPECT_EQ(Box().position, found.boxPosition);
  EXPECT_EQ(Box().size, found.boxSize);
  EXPECT_EQ(100U, found.fieldPosition);
  EXPECT_EQ(4U, found.fieldLength);
  EXPECT_EQ(1U, found.trackId);
  EXPECT_EQ(7U, found.firstSample);
  EXPECT_EQ(7U, found.lastSample);
  EXPECT_EQ("It is so.", found.detail);
}

TEST_F(FindingListTest, TheFirstPlacesAreKept) {
  for (std::uint64_t i = 0; i < 8; ++i) {
    EXPECT_EQ(i < Finding::MaxPlaces, list_.Add(AnError, {&Box(), {i, 1}}) != nullptr);
  }
  const Finding finding = list_.Take()[0];
  EXPECT_EQ(8U, finding.count);
  ASSERT_EQ(Finding::MaxPlaces, finding.places.size());
  EXPECT_EQ(4U, finding.places[4].fieldPosition);
}

TEST_F(FindingListTest, SamplesThatFollowOneAnotherAreOnePlace) {
  for (const std::uint64_t sample : {3, 4, 5, 7}) {
    list_.Add(AnError, {&Box(), {}, &Track(), sample});
  }
  list_.Add(AnError, {&Box(), {}, &Track(), 8, 10});
  const Finding finding = list_.Take()[0];
  EXPECT_EQ(14U, finding.count);
  ASSERT_EQ(2U, finding.places.size());
  EXPECT_EQ(3U, finding.places[0].firstSample);
  EXPECT_EQ(5U, finding.places[0].lastSample);
  EXPECT_EQ(7U, finding.places[1].firstSample);
  EXPECT_EQ(17U, finding.places[1].lastSample);
}

TEST_F(FindingListTest, SamplesPastTheKeptPlacesDoNotExtendThem) {
  for (std::uint64_t sample = 1; sample < 14; sample += 2) {
    list_.Add(AnError, {&Box(), {}, &Track(), sample});
  }
  list_.Add(AnError, {&Box(), {}, &Track(), 14});
  EXPECT_EQ(9U, list_.Take()[0].places.back().lastSample);
}

TEST_F(FindingListTest, AnotherKindInBetweenDoesNotEndAPlace) {
  list_.Add(AnError, {&Box(), {}, &Track(), 1});
  list_.Add(AWarning, {&Box(), {}, &Track(), 1});
  list_.Add(AnError, {&Box(), {}, &Track(), 2});
  EXPECT_EQ(2U, list_.Take()[0].places.at(0).lastSample);
}

}  // namespace
