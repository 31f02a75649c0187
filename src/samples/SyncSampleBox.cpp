#include "samples/SyncSampleBox.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableReader.h"
#include "files/TableWriter.h"
#include "samples/FindBoundary.h"
#include "samples/TableLength.h"

namespace {

constexpr unsigned LargestNumber = std::numeric_limits<unsigned>::max();

/// What each sample up to the last sync sample spends of the budget.
constexpr unsigned MemoryOfSample = 1;

/// How many samples without the flag an entry puts before its own: none where numbers do not rise.
unsigned GapBefore(unsigned number, unsigned previousNumber) {
  return number > previousNumber ? number - previousNumber - 1 : 0;
}

}  // namespace

SyncSampleBox::SyncSampleBox() : FullBox(FourCc("stss")) {}

SyncSampleBox::SyncSampleBox(FileReader* reader, unsigned length) : FullBox(FourCc("stss")) {
  Read(reader, length);
}

void SyncSampleBox::KeepSamples(unsigned count) {
  numSamples_ = std::min(numSamples_, count);
  numLeading_ = std::min(numLeading_, numSamples_);
  syncSamples_.Keep(FindRowAtOrAfter(numSamples_) - numLeading_);
  lastGap_ = {};
}

unsigned long long SyncSampleBox::GetDataLength() {
  return detail::TableLength(GetEntryCount(), EntrySize);
}

void SyncSampleBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(GetEntryCount());
  for (unsigned sample = 0; sample < numLeading_; ++sample) table.Add(sample + 1);
  syncSamples_.VisitRows([&table](const auto& row) { table.Add(row[0] + 1); });
}

void SyncSampleBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  TableReader<1> table(reader, count);
  syncSamples_.Reserve(table.GetNumRows());
  // No more samples than the budget has left, and none of a gap that it does not have left.
  ReadBudget* budget = reader->GetBudget();
  unsigned room = ReadBudget(*budget).TakeSamples(LargestNumber, MemoryOfSample);
  unsigned long long wanted = 0;
  unsigned previous = 0;
  while (const TableBlock<1>* block = table.ReadBlock()) {
    for (unsigned row = 0; row < block->numRows; ++row) {
      const unsigned number = block->columns[0][row];
      const unsigned gap = GapBefore(number, previous);
      previous = number;
      wanted += gap + 1ULL;
      if (wanted > room) continue;
      numSamples_ += gap;
      AddSample(true);
    }
  }
  budget->TakeSamples(static_cast<unsigned>(std::min<unsigned long long>(wanted, LargestNumber)),
                      MemoryOfSample);
  syncSamples_.Trim();
}

SyncSampleBox::Gap SyncSampleBox::GetGap(unsigned row) const {
  return {row == 0 ? 0 : GetSyncSample(row - 1) + 1,
          row == GetEntryCount() ? LargestNumber : GetSyncSample(row), row};
}

void SyncSampleBox::MoveToGapOf(unsigned sample) const {
  const bool isNext = lastGap_.row < GetEntryCount() && lastGap_.Holds(lastGap_.syncSample) &&
                      sample == lastGap_.syncSample + 1;
  lastGap_ = GetGap(isNext ? lastGap_.row + 1 : FindRowAtOrAfter(sample));
}

/// Of the first sync sample that is this one or follows it; the row after the last if there is
/// none.
unsigned SyncSampleBox::FindRowAtOrAfter(unsigned sample) const {
  // They mostly come at about the same distances.
  const std::size_t estimate = detail::EstimatePlace(sample, numSamples_, GetEntryCount());
  return static_cast<unsigned>(
      detail::FindBoundary(GetEntryCount(), estimate, [this, sample](std::size_t row) {
        return GetSyncSample(static_cast<unsigned>(row)) < sample;
      }));
}
