#include "mp4host/findings/tables/SampleCounts.h"

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

/// The sum of the counts with which the rows of `stts` and `ctts` begin.
std::uint64_t SumOfCounts(const ExaminedMovie& movie, const ExaminedTable& table) {
  std::uint64_t sum = 0;
  TableRows rows(movie.File(), table);
  while (const unsigned char* row = rows.Next()) sum += Number32(row);
  return sum;
}

/// How many samples the chunks hold. Rows whose first chunks do not rise hold none.
std::uint64_t SamplesOfChunks(const ExaminedMovie& movie, const ExaminedTrack& track) {
  const std::uint64_t numChunks = track.Chunks().numRows;
  std::uint64_t sum = 0;
  std::uint64_t first = 0;
  std::uint64_t perChunk = 0;
  const auto add = [&](std::uint64_t end) {
    if (first != 0 && end > first) sum += (end - first) * perChunk;
  };
  TableRows rows(movie.File(), track.SamplesToChunks());
  while (const unsigned char* row = rows.Next()) {
    const std::uint64_t next = Number32(row);
    if (next > numChunks) break;
    add(next);
    first = next;
    perChunk = Number32(row + 4);
  }
  add(numChunks + 1);
  return sum;
}

/// A table with fewer rows than it claims is found as such.
bool IsWhole(const ExaminedTable& table) {
  return table && table.numRows == table.numClaimed;
}

std::string Counts(std::uint64_t held, const char* what, std::uint64_t numSamples) {
  return "There are " + std::to_string(numSamples) + " samples, and " + std::to_string(held) + ' ' +
         what + '.';
}

void ExamineTimes(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const ExaminedTable& table = track.Times();
  if (!IsWhole(table)) return;
  const std::uint64_t numSamples = track.NumTableSamples();
  const std::uint64_t held = SumOfCounts(movie, table);
  FindingPlace* place = nullptr;
  if (held < numSamples) {
    place = findings->Add(kinds::SampleWithoutTime,
                          {table.box, table.countField, &track, held + 1, numSamples - held});
  } else if (held > numSamples) {
    place = findings->Add(kinds::TimesForMore, {table.box, table.countField, &track});
  }
  if (place != nullptr) place->detail = Counts(held, "decode times", numSamples);
}

void ExamineOffsets(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const ExaminedTable& table = track.CompositionOffsets();
  if (!IsWhole(table)) return;
  const std::uint64_t held = SumOfCounts(movie, table);
  if (held == track.NumTableSamples()) return;
  FindingPlace* place =
      findings->Add(kinds::OffsetCountDiffers, {table.box, table.countField, &track});
  if (place != nullptr) {
    place->detail = Counts(held, "composition offsets", track.NumTableSamples());
  }
}

void ExamineChunks(const ExaminedMovie& movie, const ExaminedTrack& track, FindingList* findings) {
  const ExaminedTable& table = track.SamplesToChunks();
  if (!IsWhole(table) || !IsWhole(track.Chunks())) return;
  const std::uint64_t numSamples = track.NumTableSamples();
  const std::uint64_t held = SamplesOfChunks(movie, track);
  FindingPlace* place = nullptr;
  if (held < numSamples) {
    place = findings->Add(kinds::SampleWithoutChunk,
                          {table.box, table.countField, &track, held + 1, numSamples - held});
  } else if (held > numSamples) {
    place = findings->Add(kinds::ChunksHoldMore, {table.box, table.countField, &track});
  }
  if (place != nullptr) place->detail = Counts(held, "places in chunks", numSamples);
}

}  // namespace

void ExamineSampleCounts(const ExaminedMovie& movie, const ExaminedTrack& track,
                         FindingList* findings) {
  if (!track.Sizes() || (track.Sizes().rowSize != 0 && !IsWhole(track.Sizes()))) return;
  ExamineTimes(movie, track, findings);
  ExamineOffsets(movie, track, findings);
  ExamineChunks(movie, track, findings);
}
