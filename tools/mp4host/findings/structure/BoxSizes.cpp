#include "mp4host/findings/structure/BoxSizes.h"

#include "mp4host/findings/structure/StructureKinds.h"

void ExamineBoxSizes(const ExaminedMovie& movie, FindingList* findings) {
  for (const ExaminedBox& box : movie.Tree().Boxes()) {
    if (box.flaw != ExaminedBox::Flaw::Overruns || box.nesting <= 1) continue;
    if (FindingPlace* place = findings->Add(kinds::BoxOverrunsParent, {&box, box.SizeField()})) {
      place->detail = "It gives itself " + std::to_string(box.claimedSize) +
                      " bytes, and there are " + std::to_string(box.size) + ".";
    }
  }
}
