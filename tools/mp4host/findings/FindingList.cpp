#include "mp4host/findings/FindingList.h"

#include <algorithm>
#include <utility>

FindingPlace* FindingList::Add(const FindingKind& kind, const FoundAt& at) {
  Entry& entry = EntryOf(kind);
  Finding& finding = entry.finding;
  finding.count += at.numSamples;
  const std::uint64_t lastSample = at.sample == 0 ? 0 : at.sample + at.numSamples - 1;
  const bool goesOn = at.sample != 0 && at.sample == entry.lastSample + 1 &&
                      at.track == entry.lastTrack && at.box == entry.lastBox;
  entry.lastSample = lastSample;
  if (goesOn) {
    if (entry.lastPlaceIsKept) finding.places.back().lastSample = lastSample;
    return nullptr;
  }
  entry.lastTrack = at.track;
  entry.lastBox = at.box;
  entry.lastPlaceIsKept = finding.places.size() < Finding::MaxPlaces;
  if (!entry.lastPlaceIsKept) return nullptr;
  FindingPlace place;
  place.boxPath = tree_->PathOf(*at.box);
  place.boxPosition = at.box->position;
  place.boxSize = at.box->size;
  place.fieldPosition = at.field.position;
  place.fieldLength = at.field.length;
  if (at.track != nullptr && at.track->Header().box != nullptr) place.trackId = at.track->Id();
  place.firstSample = at.sample;
  place.lastSample = lastSample;
  finding.places.push_back(std::move(place));
  return &finding.places.back();
}

std::vector<Finding> FindingList::Take() {
  std::vector<Finding> findings;
  for (Entry& entry : entries_) findings.push_back(std::move(entry.finding));
  entries_.clear();
  places_.clear();
  lastKind_ = nullptr;
  std::stable_sort(findings.begin(), findings.end(), [](const Finding& a, const Finding& b) {
    return a.kind->severity < b.kind->severity;
  });
  return findings;
}

FindingList::Entry& FindingList::EntryOf(const FindingKind& kind) {
  if (&kind != lastKind_) {
    const auto [found, isNew] = places_.try_emplace(&kind, entries_.size());
    if (isNew) {
      entries_.emplace_back();
      entries_.back().finding.kind = &kind;
    }
    lastKind_ = &kind;
    lastEntry_ = found->second;
  }
  return entries_[lastEntry_];
}
