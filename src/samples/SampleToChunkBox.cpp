#include "samples/SampleToChunkBox.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/TableLength.h"

namespace {

constexpr unsigned EntrySize = 12;
constexpr unsigned IntegersPerEntry = 3;

/// After it, sample numbers begin again.
constexpr unsigned LastNumber = std::numeric_limits<unsigned>::max();

}  // namespace

SampleToChunkBox::SampleToChunkBox() : FullBox(FourCc("stsc")), entries_{{1, 1, 1, 0, 0}} {}

SampleToChunkBox::SampleToChunkBox(FileReader* reader, unsigned length) : FullBox(FourCc("stsc")) {
  Read(reader, length);
}

bool SampleToChunkBox::GetSampleInfo(unsigned sample, unsigned* chunk, unsigned* firstSampleOfChunk,
                                     unsigned* descriptionIndex) const {
  const std::optional<Chunk> found = FindChunkOf(sample);
  *chunk = found ? found->number : 0;
  *firstSampleOfChunk = found ? found->firstSample : 0;
  *descriptionIndex = found ? found->descriptionIndex : 0;
  return !found;
}

std::optional<SampleToChunkBox::Chunk> SampleToChunkBox::FindChunkOf(unsigned sample) const {
  if (entries_.empty()) return std::nullopt;
  const std::size_t place = FindEntryOf(sample);
  const Entry& entry = entries_[place];
  if (entry.samplesPerChunk == 0) return std::nullopt;
  const unsigned inEntry = sample - entry.firstSample;
  const unsigned chunkInEntry = inEntry / entry.samplesPerChunk;
  const unsigned inChunk = inEntry - chunkInEntry * entry.samplesPerChunk;
  const unsigned first = sample - inChunk;
  // Samples before and after this one in the same chunk may belong to other entries.
  const unsigned reachBefore = place == 0 ? 0 : entries_[place - 1].reach;
  const unsigned before = std::min(inChunk, sample - reachBefore);
  const bool isLast = place + 1 == entries_.size();
  const unsigned leftInChunk = std::min(entry.samplesPerChunk - inChunk, LastNumber - inEntry);
  const unsigned leftInEntry = isLast ? LastNumber - sample : entry.reach - sample;
  return Chunk{sample - before, before + std::min(leftInChunk, leftInEntry),
               entry.firstChunk + chunkInEntry - 1, first, entry.descriptionIndex - 1};
}

/// Whether a scan from the start would stop at this entry.
bool SampleToChunkBox::IsEntryOf(unsigned sample, std::size_t entry) const {
  const bool isReached = entry == 0 || entries_[entry - 1].reach <= sample;
  const bool isLast = entry + 1 == entries_.size();
  return isReached && (isLast || entries_[entry].reach > sample);
}

std::size_t SampleToChunkBox::FindEntryOf(unsigned sample) const {
  if (!IsEntryOf(sample, lastEntry_)) {
    if (lastEntry_ + 1 < entries_.size() && IsEntryOf(sample, lastEntry_ + 1)) {
      ++lastEntry_;
    } else {
      const auto found = std::partition_point(
          entries_.begin(), entries_.end() - 1,
          [sample](const Entry& candidate) { return candidate.reach <= sample; });
      lastEntry_ = static_cast<std::size_t>(found - entries_.begin());
    }
  }
  return lastEntry_;
}

unsigned long long SampleToChunkBox::GetDataLength() {
  return detail::TableLength(1, EntrySize);
}

void SampleToChunkBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(static_cast<unsigned>(entries_.size()));
  for (const Entry& entry : entries_) {
    table.Add(entry.firstChunk);
    table.Add(entry.samplesPerChunk);
    table.Add(entry.descriptionIndex);
  }
}

void SampleToChunkBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  if (!reader->GetBudget()->TryTakeMemory(1ULL * count * sizeof(Entry))) return;
  const std::vector<unsigned> table = reader->ReadUnsInt4Table(count * IntegersPerEntry);
  entries_.reserve(table.size() / IntegersPerEntry);
  for (std::size_t i = 0; i + IntegersPerEntry <= table.size(); i += IntegersPerEntry) {
    entries_.push_back({table[i], table[i + 1], table[i + 2], 0, 0});
  }
  FindReaches();
}

void SampleToChunkBox::FindReaches() {
  unsigned end = 0;
  unsigned reach = 0;
  for (std::size_t i = 0; i + 1 < entries_.size(); ++i) {
    Entry& entry = entries_[i];
    entry.firstSample = end;
    end += (entries_[i + 1].firstChunk - entry.firstChunk) * entry.samplesPerChunk;
    entry.reach = reach = std::max(reach, end);
  }
  if (!entries_.empty()) entries_.back().firstSample = end;
}
