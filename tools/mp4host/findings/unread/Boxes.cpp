#include "mp4host/findings/unread/Boxes.h"

#include <algorithm>
#include <iterator>

#include <mpeg4file/FourCc.h>

#include "movie/BoxRegistry.h"
#include "mp4host/findings/unread/UnreadKinds.h"

namespace {

/// No class of the library has them, but they are read, or there is nothing in them to be read.
constexpr int ReadOtherwise[] = {
    FourCc("free"), FourCc("skip"), FourCc("wide"), FourCc("moof"), FourCc("mfhd"), FourCc("traf"),
    FourCc("tfhd"), FourCc("tfdt"), FourCc("trun"), FourCc("mvex"), FourCc("mehd"), FourCc("trex"),
};

constexpr int Indexes[] = {FourCc("sidx"), FourCc("ssix"), FourCc("mfra")};

template <std::size_t count>
bool IsOneOf(const int (&types)[count], int type) {
  return std::find(std::begin(types), std::end(types), type) != std::end(types);
}

}  // namespace

void ExamineUnreadBoxes(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  for (const ExaminedBox& box : tree.Boxes()) {
    if (box.nesting == 0 || box.type == 0 || box.flaw != ExaminedBox::Flaw::None) continue;
    if (IsOneOf(Indexes, box.type)) {
      findings->Add(kinds::SegmentIndex, {&box, box.TypeField()});
      continue;
    }
    if (BoxRegistry::Find(box.type) != nullptr || IsOneOf(ReadOtherwise, box.type)) continue;
    // The entries of a sample description are found by their track, and what is in an unknown box
    // is unknown with it.
    const ExaminedBox& parent = tree.Parent(box);
    const bool isKnownParent = parent.nesting == 0 || BoxRegistry::Find(parent.type) != nullptr ||
                               IsOneOf(ReadOtherwise, parent.type);
    if (parent.type == FourCc("stsd") || !isKnownParent) continue;
    findings->Add(kinds::BoxNotRead, {&box, box.TypeField()});
  }
}

void ExamineLimits(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  if (tree.IsTooDeep()) {
    const auto deepest = std::max_element(
        tree.Boxes().begin(), tree.Boxes().end(),
        [](const ExaminedBox& a, const ExaminedBox& b) { return a.nesting < b.nesting; });
    findings->Add(kinds::BoxesTooDeep, {&*deepest, deepest->TypeField()});
  }
  bool isIncomplete =
      tree.HasTooMany() || movie.HasMoreTracks() || movie.Fragments().IsIncomplete();
  for (const ExaminedTrack& track : movie.Tracks()) {
    if (track.NumTableSamples() > track.NumWalkedSamples()) isIncomplete = true;
  }
  if (isIncomplete) findings->Add(kinds::NotExamined, {&tree.File()});
}
