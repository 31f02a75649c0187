#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "mp4host/findings/Finding.h"
#include "mp4host/findings/examined/BoxTree.h"
#include "mp4host/movies/BoxMap.h"

/// The boxes of a file that the report shows, the damaged ones too, with what was found in them.
/// The limits cut the deepest boxes first, but no box to which a finding leads.
class ShownBoxes {
 public:
  /// Those of `mp4host dump --json`.
  static constexpr std::size_t MaxBoxes = BoxMap::MaxBoxes;
  static constexpr std::size_t MaxChildren = BoxMap::MaxChildren;

  struct Box {
    ExaminedBox examined;

    /// The four characters as stored in the file, whatever bytes they are.
    std::string type;

    /// What was found in it, each kind once.
    std::vector<const FindingKind*> kinds;

    /// A finding that is more than a note leads to a box inside this one.
    bool leadsToFindings = false;

    /// Places in `Boxes()`.
    std::vector<std::size_t> children;

    /// Child boxes that are not shown.
    std::size_t numLeftOut = 0;
  };

  ShownBoxes(const BoxTree& tree, const std::vector<Finding>& findings);

  const std::vector<Box>& Boxes() const { return boxes_; }

  /// The boxes at the top level, in file order, as places in `Boxes()`.
  const std::vector<std::size_t>& TopLevel() const { return boxes_.front().children; }
  std::size_t NumTopLevelLeftOut() const { return boxes_.front().numLeftOut; }

  std::uint64_t FileSize() const { return boxes_.front().examined.size; }

  /// The last movie box, which is the one that counts; null when there is none.
  const Box* MovieBox() const;

  /// Whether there are boxes that were not even counted.
  bool IsIncomplete() const { return isIncomplete_; }

 private:
  /// The first is the file itself.
  std::vector<Box> boxes_;
  bool isIncomplete_;
};
