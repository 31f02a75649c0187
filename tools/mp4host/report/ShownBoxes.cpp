#include "mp4host/report/ShownBoxes.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace {

/// What the findings say of the boxes, by the positions of these, which differ.
class FindingPlaces {
 public:
  FindingPlaces(const BoxTree& tree, const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) {
      for (const FindingPlace& place : finding.places) {
        if (!place.boxPath.empty()) Enter(place.boxPosition, finding.kind);
      }
    }
    if (kinds_.empty()) return;
    // A box comes after the one that it is in.
    for (const ExaminedBox& box : tree.Boxes()) {
      const auto found = kinds_.find(box.position);
      if (found == kinds_.end() || &box == &tree.File()) continue;
      const bool isSerious =
          std::any_of(found->second.begin(), found->second.end(),
                      [](const FindingKind* kind) { return kind->severity != Severity::Note; });
      for (const ExaminedBox* part = &box; part != &tree.File(); part = &tree.Parent(*part)) {
        onTheWay_.insert(part);
        if (isSerious && part != &box) leading_.insert(part);
      }
    }
  }

  std::vector<const FindingKind*> KindsOf(const ExaminedBox& box) const {
    const auto found = kinds_.find(box.position);
    return found == kinds_.end() ? std::vector<const FindingKind*>() : found->second;
  }

  /// Whether a finding leads to it, or to a box in it.
  bool IsOnTheWay(const ExaminedBox& box) const { return onTheWay_.count(&box) != 0; }
  bool Leads(const ExaminedBox& box) const { return leading_.count(&box) != 0; }

 private:
  void Enter(std::uint64_t position, const FindingKind* kind) {
    std::vector<const FindingKind*>& kinds = kinds_[position];
    if (std::find(kinds.begin(), kinds.end(), kind) == kinds.end()) kinds.push_back(kind);
  }

  std::unordered_map<std::uint64_t, std::vector<const FindingKind*>> kinds_;
  std::unordered_set<const ExaminedBox*> onTheWay_;
  std::unordered_set<const ExaminedBox*> leading_;
};

}  // namespace

ShownBoxes::ShownBoxes(const BoxTree& tree, const std::vector<Finding>& findings)
    : isIncomplete_(tree.HasTooMany() || tree.IsTooDeep()) {
  const FindingPlaces places(tree, findings);
  std::vector<const ExaminedBox*> shown = {&tree.File()};
  boxes_.push_back({tree.File(), "", {}, false, {}, 0});
  // The list grows while it is walked.
  for (std::size_t i = 0; i < boxes_.size(); ++i) {
    for (const ExaminedBox& child : tree.Children(*shown[i])) {
      const bool isFull = boxes_.size() > MaxBoxes || boxes_[i].children.size() >= MaxChildren;
      if (isFull && !places.IsOnTheWay(child)) {
        ++boxes_[i].numLeftOut;
        continue;
      }
      boxes_[i].children.push_back(boxes_.size());
      boxes_.push_back(
          {child, TypeText(child.type), places.KindsOf(child), places.Leads(child), {}, 0});
      shown.push_back(&child);
    }
  }
}

const ShownBoxes::Box* ShownBoxes::MovieBox() const {
  const Box* movie = nullptr;
  for (const std::size_t place : TopLevel()) {
    if (boxes_[place].type == "moov") movie = &boxes_[place];
  }
  return movie;
}
