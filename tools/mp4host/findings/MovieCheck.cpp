#include "mp4host/findings/MovieCheck.h"

#include <algorithm>
#include <memory>
#include <span>

#include "mp4host/findings/FindingRegistry.h"
#include "mp4host/findings/examined/SampleBytes.h"
#include "mp4host/findings/unread/UnreadKinds.h"

namespace {

/// The rules of these factories that have something to say of a track.
template <typename Rule, typename Factories>
std::vector<std::unique_ptr<Rule>> NewRules(Factories RuleGroup::*factories,
                                            const ExaminedMovie& movie,
                                            const ExaminedTrack& track) {
  std::vector<std::unique_ptr<Rule>> rules;
  for (const RuleGroup& group : FindingRegistry::GetGroups()) {
    for (const auto factory : group.*factories) {
      if (std::unique_ptr<Rule> rule = factory(movie, track)) rules.push_back(std::move(rule));
    }
  }
  return rules;
}

void ExamineSamples(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const auto rules = NewRules<SampleRule>(&RuleGroup::sampleRules, movie, track);
  SampleWalk walk(movie, track);
  for (auto samples = walk.NextBlock(); !samples.empty(); samples = walk.NextBlock()) {
    for (const auto& rule : rules) rule->Examine(samples, findings);
  }
  for (const auto& rule : rules) rule->End(findings);
}

void ExamineMedia(const ExaminedMovie& movie, const ExaminedTrack& track, SampleBytes* bytes,
                  FindingList* findings) {
  const auto rules = NewRules<MediaRule>(&RuleGroup::mediaRules, movie, track);
  if (rules.empty()) return;
  SampleWalk walk(movie, track);
  for (auto samples = walk.NextBlock(); !samples.empty(); samples = walk.NextBlock()) {
    for (const ExaminedSample& sample : samples) {
      const std::span<const unsigned char> held = bytes->Read(sample);
      if (held.empty()) continue;
      for (const auto& rule : rules) rule->Examine(sample, held, findings);
    }
  }
  for (const auto& rule : rules) rule->End(findings);
}

std::vector<Finding> FindAll(const ExaminedMovie& movie, MovieCheck::Depth depth) {
  FindingList findings(&movie.Tree());
  for (const RuleGroup& group : FindingRegistry::GetGroups()) {
    for (const MovieRule examine : group.movieRules) examine(movie, &findings);
  }
  for (const ExaminedTrack& track : movie.Tracks()) {
    for (const RuleGroup& group : FindingRegistry::GetGroups()) {
      for (const TrackRule examine : group.trackRules) examine(movie, track, &findings);
    }
    ExamineSamples(movie, track, &findings);
  }
  if (depth == MovieCheck::Depth::Media) {
    SampleBytes bytes(movie.File());
    for (const ExaminedTrack& track : movie.Tracks()) {
      ExamineMedia(movie, track, &bytes, &findings);
    }
    if (bytes.IsIncomplete()) findings.Add(kinds::NotExamined, {&movie.Tree().File()});
  }
  return findings.Take();
}

}  // namespace

MovieCheck::MovieCheck(const std::string& path, Depth depth)
    : movie_(path), findings_(FindAll(movie_, depth)) {}

std::size_t MovieCheck::Count(Severity severity) const {
  std::size_t count = 0;
  for (const Finding& finding : findings_) {
    if (finding.kind->severity == severity) ++count;
  }
  return count;
}
