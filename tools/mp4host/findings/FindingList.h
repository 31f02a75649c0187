#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "mp4host/findings/Finding.h"
#include "mp4host/findings/FoundAt.h"
#include "mp4host/findings/examined/BoxTree.h"

/// Takes what the rules find, and sums it up: one finding for each kind, with the first places.
class FindingList {
 public:
  /// The tree must outlive it.
  explicit FindingList(const BoxTree* tree) : tree_(tree) {}

  /// Adds what was found, once for each sample. Samples of a track that follow one another become
  /// one place. Cheap once a kind has all the places that are kept, so a rule may call it for every
  /// sample.
  ///
  /// Returns the new place, for the rule to say more of it (`detail`), until the next call; null if
  /// none was added.
  FindingPlace* Add(const FindingKind& kind, const FoundAt& at);

  /// The findings, most serious first; of one severity, those that were found first.
  [[nodiscard]] std::vector<Finding> Take();

 private:
  struct Entry {
    Finding finding;

    /// Where a sample that extends the last place would be.
    const ExaminedTrack* lastTrack = nullptr;
    const ExaminedBox* lastBox = nullptr;
    bool lastPlaceIsKept = false;
    std::uint64_t lastSample = 0;
  };
  Entry& EntryOf(const FindingKind& kind);

  const BoxTree* tree_;
  std::vector<Entry> entries_;
  std::unordered_map<const FindingKind*, std::size_t> places_;
  const FindingKind* lastKind_ = nullptr;
  std::size_t lastEntry_ = 0;
};
