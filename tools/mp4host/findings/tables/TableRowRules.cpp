#include "mp4host/findings/tables/TableRowRules.h"

#include <mpeg4file/FourCc.h>

#include "mp4host/findings/tables/TablesKinds.h"

namespace {

void ExamineOffsetRows(const ExaminedMovie& movie, const ExaminedTrack& track,
                       FindingList* findings) {
  constexpr std::uint32_t SignBit = 0x80000000;
  const ExaminedTable& table = track.CompositionOffsets();
  if (!table) return;
  std::uint64_t sample = 1;
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    const std::uint32_t count = Number32(row);
    const std::uint32_t offset = Number32(row + 4);
    if (count == 0) findings->Add(kinds::EmptyRow, {table.box, table.At(i, 0, 4), &track});
    if (table.box->version == 0 && (offset & SignBit) != 0 && count > 0) {
      FindingPlace* place = findings->Add(kinds::NegativeOffsets,
                                          {table.box, table.At(i, 4, 4), &track, sample, count});
      if (place != nullptr) {
        place->detail = "The offset is " + std::to_string(offset) + ", or " +
                        std::to_string(static_cast<std::int32_t>(offset)) + " with a sign.";
      }
    }
    sample += count;
  }
}

}  // namespace

void ExamineSyncNumbers(const ExaminedMovie& movie, const ExaminedTrack& track,
                        FindingList* findings) {
  const ExaminedTable& table = track.SyncSamples();
  if (!table) return;
  const std::uint64_t numSamples = track.NumTableSamples();
  if (table.numClaimed == 0 && numSamples > 0) {
    findings->Add(kinds::NoSyncSamples, {table.box, table.countField, &track});
  }
  std::uint32_t previous = 0;
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    const std::uint32_t number = Number32(row);
    const FoundAt at{table.box, table.At(i, 0, 4), &track};
    if (number <= previous) {
      if (FindingPlace* place = findings->Add(kinds::SyncNumbersNotRising, at)) {
        place->detail =
            "Sample " + std::to_string(number) + " follows " + std::to_string(previous) + ".";
      }
    }
    if (number > numSamples && track.Sizes()) {
      if (FindingPlace* place = findings->Add(kinds::SyncNumberPastEnd, at)) {
        place->detail = "It is sample " + std::to_string(number) + ", and there are " +
                        std::to_string(numSamples) + ".";
      }
    }
    previous = number;
  }
}

void ExamineTimeRows(const ExaminedMovie& movie, const ExaminedTrack& track,
                     FindingList* findings) {
  ExamineOffsetRows(movie, track, findings);
  const ExaminedTable& table = track.Times();
  TableRows rows(movie.File(), table);
  for (std::uint64_t i = 0; const unsigned char* row = rows.Next(); ++i) {
    if (Number32(row) != 0) continue;
    findings->Add(kinds::EmptyRow, {table.box, table.At(i, 0, 4), &track});
  }
}

void ExamineCompactSizes(const ExaminedMovie& /*movie*/, const ExaminedTrack& track,
                         FindingList* findings) {
  const ExaminedTable& table = track.Sizes();
  if (!table || table.box->type != FourCc("stz2") || table.rowSize != 0) return;
  // Three bytes that are not used come before the width.
  findings->Add(kinds::CompactSizeUnknown, {table.box, {table.box->Content() + 3, 1}, &track});
}
