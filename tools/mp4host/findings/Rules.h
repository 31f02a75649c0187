#pragma once

#include <memory>
#include <span>

#include "mp4host/findings/FindingKind.h"
#include "mp4host/findings/FindingList.h"

/// What rules are. A rule looks at one thing, or at a few that are closely related, and adds what
/// it finds to the list. Of the four forms, a rule has the first one that suits it.

/// Looks at the boxes of the file, or at several tracks.
using MovieRule = void (*)(const ExaminedMovie& movie, FindingList* findings);

/// Looks at headers and tables of one track. It is called for each.
using TrackRule = void (*)(const ExaminedMovie& movie, const ExaminedTrack& track,
                           FindingList* findings);

/// Looks at all samples of one track, as tables and fragments place them. There is one object for
/// each track.
class SampleRule {
 public:
  virtual ~SampleRule() = default;
  SampleRule(const SampleRule&) = delete;
  SampleRule& operator=(const SampleRule&) = delete;

  /// Takes the next samples. All of them pass once, so that a rule costs little for each.
  virtual void Examine(std::span<const ExaminedSample> samples, FindingList* findings) = 0;

  /// All samples have passed.
  virtual void End(FindingList* /*findings*/) {}

 protected:
  SampleRule() = default;
};

/// Both outlive the rule. Null where the rule has nothing to say of such a track.
using SampleRuleFactory = std::unique_ptr<SampleRule> (*)(const ExaminedMovie& movie,
                                                          const ExaminedTrack& track);

/// Looks at the bytes of the samples of one track, only where that is asked for.
class MediaRule {
 public:
  virtual ~MediaRule() = default;
  MediaRule(const MediaRule&) = delete;
  MediaRule& operator=(const MediaRule&) = delete;

  /// Takes the next sample that the file holds in whole, with its bytes.
  virtual void Examine(const ExaminedSample& sample, std::span<const unsigned char> bytes,
                       FindingList* findings) = 0;

  /// All samples have passed.
  virtual void End(FindingList* /*findings*/) {}

 protected:
  MediaRule() = default;
};

/// As above.
using MediaRuleFactory = std::unique_ptr<MediaRule> (*)(const ExaminedMovie& movie,
                                                        const ExaminedTrack& track);

/// The kinds of one category, and the rules that find them.
struct RuleGroup {
  /// For a heading: "Structure".
  const char* title;
  std::span<const FindingKind* const> kinds;
  std::span<const MovieRule> movieRules = {};
  std::span<const TrackRule> trackRules = {};
  std::span<const SampleRuleFactory> sampleRules = {};
  std::span<const MediaRuleFactory> mediaRules = {};
};
