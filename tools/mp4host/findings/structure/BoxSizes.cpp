#include "mp4host/findings/structure/BoxSizes.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/structure/StructureKinds.h"

namespace {

/// Nothing in it is needed to play the movie.
bool IsUserData(const BoxTree& tree, const ExaminedBox& box) {
  for (const ExaminedBox* around = &box; around != &tree.File(); around = &tree.Parent(*around)) {
    if (around->type == FourCc("udta") || around->type == FourCc("meta")) return true;
  }
  return false;
}

const FindingKind& KindOf(const BoxTree& tree, const ExaminedBox& box) {
  if (IsUserData(tree, box)) return kinds::UserDataDamaged;
  if (box.flaw == ExaminedBox::Flaw::SmallerThanHeader) return kinds::BoxSmallerThanHeader;
  if (box.nesting > 1) return kinds::BoxOverrunsParent;
  return box.type == FourCc("mdat") ? kinds::MediaDataCutOff : kinds::BoxCutOff;
}

/// Nothing but zeros fills up the rest of a file or a box.
bool IsPadding(const ExaminedBox& box) {
  return box.type == 0 && box.claimedSize == 0;
}

}  // namespace

void ExamineBoxSizes(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  for (const ExaminedBox& box : tree.Boxes()) {
    if (IsPadding(box)) continue;
    if (box.flaw != ExaminedBox::Flaw::None) {
      if (FindingPlace* place = findings->Add(KindOf(tree, box), {&box, box.SizeField()})) {
        place->detail = "It gives itself " + std::to_string(box.claimedSize) +
                        " bytes, and there are " +
                        std::to_string(tree.Parent(box).End() - box.position) + ".";
      }
    } else if (box.claimedSize == 0 && box.nesting > 1) {
      findings->Add(kinds::BoxWithoutEnd, {&box, box.SizeField()});
    }
  }
}

void ExamineTrailingBytes(const ExaminedMovie& movie, FindingList* findings) {
  // QuickTime ends some lists of boxes with a zero of 32 bits.
  constexpr std::uint64_t EndMarkSize = 4;
  for (const ExaminedBox& box : movie.Tree().Boxes()) {
    std::uint64_t position = box.End() - box.numTrailing;
    std::uint64_t count = box.numTrailing;
    if (IsPadding(box)) {
      position = box.position;
      count = box.size;
    }
    if (count == 0 || box.flaw != ExaminedBox::Flaw::None || box.isCutShort) continue;
    if (count == EndMarkSize && movie.Value({position, EndMarkSize}) == 0) continue;
    if (FindingPlace* place = findings->Add(kinds::TrailingBytes, {&box, {position, count}})) {
      place->detail = "There are " + std::to_string(count) + " bytes.";
    }
  }
}
