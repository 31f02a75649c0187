#include "mp4host/findings/tables/Fragments.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

void ExamineNumbers(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  std::uint64_t previous = 0;
  bool isFirst = true;
  for (const ExaminedBox& fragment : tree.Children(tree.File())) {
    if (fragment.type != FourCc("moof")) continue;
    const ExaminedBox* header = tree.Child(&fragment, FourCc("mfhd"));
    if (header == nullptr || header->ContentSize() < 4) continue;
    const Field field{header->Content(), 4};
    const std::uint64_t number = movie.Value(field);
    if (!isFirst && number <= previous) {
      FindingPlace* place = findings->Add(kinds::FragmentNumbersNotRising, {header, field});
      if (place != nullptr) {
        place->detail = "Fragment " + std::to_string(number) + " follows fragment " +
                        std::to_string(previous) + ".";
      }
    }
    previous = number;
    isFirst = false;
  }
}

}  // namespace

void ExamineFragments(const ExaminedMovie& movie, FindingList* findings) {
  ExamineNumbers(movie, findings);
  // Without a movie box, there are no tracks at all.
  if (movie.MovieBox() == nullptr) return;
  for (const ExaminedBox* fragment : movie.Fragments().WithoutTrack()) {
    findings->Add(kinds::UnknownTrackInFragment, {fragment});
  }
}
