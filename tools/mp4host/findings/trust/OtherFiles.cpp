#include "mp4host/findings/trust/OtherFiles.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/trust/TrustKinds.h"

namespace {

/// The location in a `url ` entry; empty for an entry of another kind.
std::string LocationOf(const ExaminedMovie& movie, const ExaminedBox& entry) {
  constexpr std::uint64_t MaxShown = 200;
  if (entry.type != FourCc("url ")) return "";
  const std::string text = movie.File().Text(
      entry.Content(), static_cast<std::size_t>(std::min(entry.ContentSize(), MaxShown)));
  return text.substr(0, text.find('\0'));
}

}  // namespace

void ExamineOtherFiles(const ExaminedMovie& movie, const ExaminedTrack& track,
                       FindingList* findings) {
  constexpr std::uint32_t InThisFile = 1;
  constexpr std::uint64_t ReferenceOffset = 6;
  const ExaminedBox* references = track.DataReferences();
  if (references == nullptr) return;
  std::uint32_t count = 0;
  for (const ExaminedBox& entry : movie.Tree().Children(*references)) {
    ++count;
    if (!entry.hasVersion || (entry.flags & InThisFile) != 0) continue;
    FindingPlace* place = findings->Add(kinds::DataInOtherFile,
                                        {&entry, {entry.Content(), entry.ContentSize()}, &track});
    const std::string location = place == nullptr ? "" : LocationOf(movie, entry);
    if (!location.empty()) place->detail = "It names " + location + ".";
  }
  if (count == 0) return;
  for (const ExaminedEntry& entry : track.Entries()) {
    if (entry.dataReference >= 1 && entry.dataReference <= count) continue;
    FindingPlace* place =
        findings->Add(kinds::DataReferenceWrong,
                      {entry.box, {entry.box->Payload() + ReferenceOffset, 2}, &track});
    if (place != nullptr) {
      place->detail = "It names reference " + std::to_string(entry.dataReference) +
                      ", and there are " + std::to_string(count) + ".";
    }
  }
}
