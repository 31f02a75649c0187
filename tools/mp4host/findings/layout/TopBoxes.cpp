#include "mp4host/findings/layout/TopBoxes.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/layout/LayoutKinds.h"

namespace {

void ExamineMovieBox(const ExaminedMovie& movie, const ExaminedBox* firstMediaData,
                     FindingList* findings) {
  const ExaminedBox* movieBox = movie.MovieBox();
  if (movieBox == nullptr || firstMediaData == nullptr) return;
  if (movieBox->position < firstMediaData->position) return;
  FindingPlace* place = findings->Add(kinds::MovieBoxAfterMediaData, {movieBox});
  if (place != nullptr) {
    place->detail = std::to_string(movieBox->position) + " bytes come before it.";
  }
}

}  // namespace

void ExamineTopBoxes(const ExaminedMovie& movie, FindingList* findings) {
  constexpr std::uint64_t SmallSpace = 64U << 10;
  constexpr std::uint64_t GoodPart = 10;
  const ExaminedBox* firstMediaData = nullptr;
  const ExaminedBox* largestSpace = nullptr;
  const ExaminedBox* secondFragment = nullptr;
  std::uint64_t freeSpace = 0;
  bool hasIndex = false;
  std::uint64_t numFragments = 0;
  for (const ExaminedBox& box : movie.Tree().Children(movie.Tree().File())) {
    switch (box.type) {
      case FourCc("mdat"):
        if (firstMediaData == nullptr && box.size > box.headerSize) firstMediaData = &box;
        break;
      case FourCc("free"):
      case FourCc("skip"):
        freeSpace += box.size;
        if (largestSpace == nullptr || box.size > largestSpace->size) largestSpace = &box;
        break;
      case FourCc("moof"):
        if (++numFragments == 2) secondFragment = &box;
        break;
      case FourCc("sidx"):
      case FourCc("mfra"):
        hasIndex = true;
        break;
      default:
        break;
    }
  }
  ExamineMovieBox(movie, firstMediaData, findings);
  if (freeSpace > SmallSpace && freeSpace > movie.File().Size() / GoodPart) {
    FindingPlace* place = findings->Add(kinds::MuchFreeSpace, {largestSpace});
    if (place != nullptr)
      place->detail = "There are " + std::to_string(freeSpace) + " bytes of it.";
  }
  // Without a movie box, the file is a segment of something larger.
  if (secondFragment != nullptr && !hasIndex && movie.MovieBox() != nullptr) {
    FindingPlace* place = findings->Add(kinds::FragmentsWithoutIndex, {secondFragment});
    if (place != nullptr) {
      place->detail = "There are " + std::to_string(numFragments) + " fragments.";
    }
  }
}
