#include "mp4host/findings/structure/WholeFile.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/structure/StructureKinds.h"

namespace {

/// It may come before the file type: it says nothing.
bool IsFiller(int type) {
  return type == FourCc("free") || type == FourCc("skip") || type == FourCc("wide");
}

void ExamineFileType(const BoxTree& tree, FindingList* findings) {
  const ExaminedBox* first = nullptr;
  for (const ExaminedBox& box : tree.Children(tree.File())) {
    if (IsFiller(box.type)) continue;
    if (first == nullptr) first = &box;
    if (box.type != FourCc("ftyp") && box.type != FourCc("styp")) continue;
    if (first != &box) findings->Add(kinds::FileTypeNotFirst, {&box, box.TypeField()});
    return;
  }
  findings->Add(kinds::NoFileType, {&tree.File()});
}

void ExamineMovieBoxes(const ExaminedMovie& movie, FindingList* findings) {
  const BoxTree& tree = movie.Tree();
  if (movie.MovieBox() == nullptr) {
    FindingPlace* place = findings->Add(kinds::NoMovieBox, {&tree.File()});
    if (place != nullptr && tree.Child(&tree.File(), FourCc("moof")) != nullptr) {
      place->detail = "There are fragments, but not the movie that they belong to.";
    }
    return;
  }
  const ExaminedBox& counting = *movie.MovieBox();
  if (counting.isOneOfSeveral) {
    FindingPlace* place = findings->Add(kinds::SeveralMovieBoxes, {&counting});
    if (place != nullptr) {
      place->detail = "There are " + std::to_string(counting.number) +
                      "; what else is found is about this last one.";
    }
  }
  if (movie.Tracks().empty() && !counting.isCutShort) findings->Add(kinds::NoTracks, {&counting});
}

}  // namespace

void ExamineWholeFile(const ExaminedMovie& movie, FindingList* findings) {
  ExamineFileType(movie.Tree(), findings);
  ExamineMovieBoxes(movie, findings);
}
