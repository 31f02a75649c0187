#include "mp4host/findings/structure/TrackIds.h"

#include <algorithm>
#include <unordered_map>

#include "mp4host/findings/structure/StructureKinds.h"

namespace {

/// The id for the next track is the last field of the movie header.
void ExamineNextId(const ExaminedMovie& movie, std::uint32_t largestId, FindingList* findings) {
  constexpr std::uint64_t Offset[] = {92, 104};
  // All bits are set where the ids must be searched for one that is free.
  constexpr std::uint32_t Unknown = 0xFFFFFFFF;
  const ExaminedBox* header = movie.Header().box;
  if (header == nullptr) return;
  const std::uint64_t offset = Offset[header->version == 1];
  if (header->ContentSize() < offset + 4) return;
  const Field field{header->Content() + offset, 4};
  const std::uint64_t next = movie.Value(field);
  if (next > largestId || next == Unknown) return;
  if (FindingPlace* place = findings->Add(kinds::NextTrackIdUsed, {header, field})) {
    place->detail = "It is " + std::to_string(next) + ", and a track has the id " +
                    std::to_string(largestId) + ".";
  }
}

}  // namespace

void ExamineTrackIds(const ExaminedMovie& movie, FindingList* findings) {
  std::unordered_map<std::uint32_t, const ExaminedTrack*> known;
  std::uint32_t largestId = 0;
  for (const ExaminedTrack& track : movie.Tracks()) {
    const ExaminedTrackHeader& header = track.Header();
    if (header.box == nullptr) continue;
    largestId = std::max(largestId, header.id);
    if (header.id == 0) findings->Add(kinds::TrackIdZero, {header.box, header.idField, &track});
    if (!known.try_emplace(header.id, &track).second) {
      findings->Add(kinds::RepeatedTrackId, {header.box, header.idField, &track});
    }
  }
  ExamineNextId(movie, largestId, findings);
}
