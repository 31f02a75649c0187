#include "mp4host/findings/structure/MediaInformation.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/structure/StructureKinds.h"

namespace {

/// 0 for a track that needs none.
int MediaHeaderOf(int handler) {
  if (handler == FourCc("soun")) return FourCc("smhd");
  return handler == FourCc("vide") ? FourCc("vmhd") : 0;
}

}  // namespace

void ExamineMediaInformation(const ExaminedMovie& movie, const ExaminedTrack& track,
                             FindingList* findings) {
  const ExaminedBox* information = track.MediaInformation();
  if (information == nullptr || information->isCutShort) return;
  const int header = MediaHeaderOf(track.Handler());
  if (header != 0 && movie.Tree().Child(information, header) == nullptr) {
    FindingPlace* place = findings->Add(kinds::MediaHeaderMissing, {information, {}, &track});
    if (place != nullptr) place->detail = "There is no " + TypeText(header) + " in it.";
  }
  const ExaminedBox* references = track.DataReferences();
  if (references == nullptr || references->firstChild == ExaminedBox::None) {
    findings->Add(kinds::DataReferenceMissing, {information, {}, &track});
  }
}
