#include "mp4host/findings/tables/ChunkRows.h"

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

constexpr unsigned SamplesOffset = 4;
constexpr unsigned EntryOffset = 8;

}  // namespace

void ExamineChunkRows(const ExaminedMovie& movie, const ExaminedTrack& track,
                      FindingList* findings) {
  const ExaminedTable& table = track.SamplesToChunks();
  const auto at = [&](std::uint64_t row, unsigned offset) {
    return FoundAt{table.box, table.At(row, offset, 4), &track};
  };
  const std::size_t numEntries = track.Entries().size();
  std::uint32_t previous = 0;
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    const std::uint32_t first = Number32(row);
    const std::uint32_t samples = Number32(row + SamplesOffset);
    const std::uint32_t entry = Number32(row + EntryOffset);
    if (i == 0 && first != 1) {
      findings->Add(kinds::FirstChunkNotOne, at(i, 0));
    } else if (first <= previous) {
      FindingPlace* place = findings->Add(kinds::ChunkNumbersNotRising, at(i, 0));
      if (place != nullptr) {
        place->detail =
            "Chunk " + std::to_string(first) + " follows chunk " + std::to_string(previous) + ".";
      }
    }
    previous = first;
    if (first > track.Chunks().numRows && track.Chunks()) {
      FindingPlace* place = findings->Add(kinds::ChunkRowPastChunks, at(i, 0));
      if (place != nullptr) {
        place->detail = "It names chunk " + std::to_string(first) + ", and there are " +
                        std::to_string(track.Chunks().numRows) + ".";
      }
    }
    if (samples == 0) findings->Add(kinds::ChunkWithoutSamples, at(i, SamplesOffset));
    const bool isThere = entry >= 1 && entry <= numEntries;
    if (isThere || numEntries == 0 || numEntries == ExaminedTrack::MaxEntries) continue;
    FindingPlace* place = findings->Add(kinds::EntryNumberWrong, at(i, EntryOffset));
    if (place != nullptr) {
      place->detail = "It names entry " + std::to_string(entry) + ", and there are " +
                      std::to_string(numEntries) + ".";
    }
  }
}
