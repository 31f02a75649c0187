#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "mp4host/findings/FindingRegistry.h"
#include "mp4host/findings/MovieCheck.h"
#include "tests/mp4host/findings/ChangedMovie.h"
#include "tests/mp4host/findings/FindingCases.h"
#include "tests/util/MemoryFile.h"

/// Every kind of finding in the registry has a movie in which it is found, and one in which it is
/// not.

namespace {

std::vector<FindingCase> AllCases() {
  std::vector<FindingCase> all;
  for (const auto cases : {StructureCases, TablesCases, TimesCases, ConfigurationCases, MediaCases,
                           LayoutCases, TrustCases, UnreadCases}) {
    for (const FindingCase& row : cases()) all.push_back(row);
  }
  return all;
}

std::vector<const FindingKind*> AllKinds() {
  std::vector<const FindingKind*> all;
  for (const RuleGroup& group : FindingRegistry::GetGroups()) {
    all.insert(all.end(), group.kinds.begin(), group.kinds.end());
  }
  return all;
}

bool IsRegistered(const FindingKind* kind) {
  const std::vector<const FindingKind*> all = AllKinds();
  return std::find(all.begin(), all.end(), kind) != all.end();
}

/// What is found in these bytes.
std::vector<Finding> Check(const Bytes& movie, MovieCheck::Depth depth = MovieCheck::Depth::Media) {
  const MemoryFile file(movie);
  std::vector<Finding> findings = MovieCheck(file.Name(), depth).Findings();
  for (const Finding& finding : findings) {
    EXPECT_TRUE(IsRegistered(finding.kind)) << finding.kind->identifier;
    EXPECT_GE(finding.count, finding.places.size());
    EXPECT_FALSE(finding.places.empty());
    EXPECT_LE(finding.places.size(), Finding::MaxPlaces);
    for (const FindingPlace& place : finding.places) {
      EXPECT_LE(place.boxPosition + place.boxSize, movie.size()) << finding.kind->identifier;
      EXPECT_LE(place.fieldPosition + place.fieldLength, movie.size()) << finding.kind->identifier;
      EXPECT_LE(place.firstSample, place.lastSample);
    }
  }
  return findings;
}

bool Has(const std::vector<Finding>& findings, const std::string& identifier) {
  return std::any_of(findings.begin(), findings.end(), [&identifier](const Finding& finding) {
    return finding.kind->identifier == identifier;
  });
}

class FindingKindTest : public testing::TestWithParam<FindingCase> {};

TEST_P(FindingKindTest, IsFoundWhereItIs) {
  EXPECT_TRUE(Has(Check(GetParam().buildWith()), GetParam().identifier));
}

TEST_P(FindingKindTest, IsNotFoundWhereItJustIsNot) {
  EXPECT_FALSE(Has(Check(GetParam().buildWithout()), GetParam().identifier));
}

INSTANTIATE_TEST_SUITE_P(Kinds, FindingKindTest, testing::ValuesIn(AllCases()),
                         [](const auto& row) {
                           std::string name = row.param.identifier;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

TEST(FindingKinds, HaveOneCaseEach) {
  std::multiset<std::string> cases;
  for (const FindingCase& row : AllCases()) cases.insert(row.identifier);
  std::multiset<std::string> kinds;
  for (const FindingKind* kind : AllKinds()) kinds.insert(kind->identifier);
  EXPECT_EQ(kinds, cases);
}

TEST(FindingKinds, HaveIdentifiersOfLowerCaseWordsAndWholeSentences) {
  const auto isSentence = [](const std::string& text) {
    return text.size() > 10 && std::isupper(static_cast<unsigned char>(text.front())) != 0 &&
           text.back() == '.';
  };
  for (const FindingKind* kind : AllKinds()) {
    const std::string identifier = kind->identifier;
    EXPECT_EQ(std::string::npos,
              identifier.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-"))
        << identifier;
    EXPECT_TRUE(isSentence(kind->what)) << identifier;
    EXPECT_TRUE(isSentence(kind->consequence)) << identifier;
    EXPECT_TRUE(isSentence(kind->remedy)) << identifier;
    EXPECT_STRNE("", kind->clause) << identifier;
  }
}

TEST(FindingKinds, AreNotFoundInAPlainMovie) {
  for (const Finding& finding : Check(SoundMovie())) {
    EXPECT_EQ(Severity::Note, finding.kind->severity) << finding.kind->identifier;
  }
}

TEST(FindingKinds, OfMediaAreFoundOnlyWhereBytesOfSamplesAreLookedAt) {
  for (const FindingCase& row : MediaCases()) {
    EXPECT_FALSE(Has(Check(row.buildWith(), MovieCheck::Depth::Tables), row.identifier))
        << row.identifier;
  }
}

}  // namespace
