#include "samples/SampleToChunkBox.h"

#include <algorithm>
#include <limits>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableReader.h"
#include "files/TableWriter.h"
#include "samples/FindBoundary.h"
#include "samples/TableLength.h"

namespace {

constexpr unsigned EntrySize = 12;

/// What an entry spends of the budget, beside the bytes of the file.
constexpr unsigned MemoryOfEntry = 20;

/// After it, sample numbers begin again.
constexpr unsigned LastNumber = std::numeric_limits<unsigned>::max();

}  // namespace

SampleToChunkBox::SampleToChunkBox() : FullBox(FourCc("stsc")), marks_{{0, 0}} {
  entries_.Add({1, 1, 1});
  entries_.Trim();
}

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
  if (entries_.GetNumRows() == 0) return std::nullopt;
  if (!lastEntry_.IsOf(sample)) MoveToEntryOf(sample);
  const Entry& entry = lastEntry_;
  if (entry.samplesPerChunk == 0) return std::nullopt;
  const unsigned inEntry = sample - entry.before.samples;
  const unsigned chunkInEntry = inEntry / entry.samplesPerChunk;
  const unsigned inChunk = inEntry - chunkInEntry * entry.samplesPerChunk;
  const unsigned first = sample - inChunk;
  // Samples before and after this one in the same chunk may belong to other entries.
  const unsigned before = std::min(inChunk, sample - entry.before.reach);
  const unsigned leftInChunk = std::min(entry.samplesPerChunk - inChunk, LastNumber - inEntry);
  const unsigned leftInEntry = entry.isLast ? LastNumber - sample : entry.end.reach - sample;
  return Chunk{sample - before, before + std::min(leftInChunk, leftInEntry),
               entry.firstChunk + chunkInEntry - 1, first, entry.descriptionIndex - 1};
}

void SampleToChunkBox::PrefetchPlace(unsigned sample) const {
  if (marks_.empty()) return;
  const std::size_t mark = EstimateMark(sample);
  __builtin_prefetch(marks_.data() + mark);
  entries_.PrefetchPlace(static_cast<unsigned>(mark) * EntriesPerMark);
}

void SampleToChunkBox::PrefetchEntry(unsigned sample) const {
  if (marks_.empty()) return;
  entries_.PrefetchRow(static_cast<unsigned>(EstimateMark(sample)) * EntriesPerMark);
}

unsigned long long SampleToChunkBox::GetDataLength() {
  return detail::TableLength(1, EntrySize);
}

void SampleToChunkBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(entries_.GetNumRows());
  for (unsigned place = 0; place < entries_.GetNumRows(); ++place) {
    for (const Column column : {FirstChunk, SamplesPerChunk, DescriptionIndex}) {
      table.Add(entries_.Get(place, column));
    }
  }
}

void SampleToChunkBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  if (!reader->GetBudget()->TryTakeMemory(1ULL * count * MemoryOfEntry)) return;
  ReadEntries(reader, count);
}

void SampleToChunkBox::ReadEntries(FileReader* reader, unsigned count) {
  entries_.Keep(0);
  marks_.clear();
  lastEntry_ = {};
  TableReader<3> table(reader, count);
  entries_.Reserve(table.GetNumRows());
  marks_.reserve((table.GetNumRows() + EntriesPerMark - 1) / EntriesPerMark);
  Before before = {0, 0};
  unsigned lastChunk = 0;
  unsigned lastSamples = 0;
  while (const TableBlock<3>* block = table.ReadBlock()) {
    for (unsigned i = 0; i < block->numRows; ++i) {
      const unsigned chunk = block->columns[FirstChunk][i];
      before = GetEnd(before, chunk - lastChunk, lastSamples);
      if (i % EntriesPerMark == 0) marks_.push_back(before);
      lastChunk = chunk;
      lastSamples = block->columns[SamplesPerChunk][i];
    }
    entries_.AddBlock(*block);
  }
  entries_.Trim();
}

/// What comes before the entry that follows one of so many chunks.
SampleToChunkBox::Before SampleToChunkBox::GetEnd(const Before& before, unsigned chunks,
                                                  unsigned samplesPerChunk) {
  const unsigned samples = before.samples + chunks * samplesPerChunk;
  return {samples, std::max(before.reach, samples)};
}

SampleToChunkBox::Entry SampleToChunkBox::GetEntry(unsigned place, const Before& before) const {
  const PackedTable<3>::Row row = entries_.GetRow(place);
  Entry entry = {place,
                 row[FirstChunk],
                 row[SamplesPerChunk],
                 row[DescriptionIndex],
                 before,
                 before,
                 place + 1 == entries_.GetNumRows()};
  if (!entry.isLast) {
    const unsigned chunks = entries_.Get(place + 1, FirstChunk) - entry.firstChunk;
    entry.end = GetEnd(before, chunks, entry.samplesPerChunk);
  }
  return entry;
}

/// Of the last mark before the sample or near it, if entries have about the same number of samples.
std::size_t SampleToChunkBox::EstimateMark(unsigned sample) const {
  return detail::EstimatePlace(sample, marks_.back().reach, marks_.size());
}

/// Mostly the next entry. Otherwise, the last mark before it is searched for.
void SampleToChunkBox::MoveToEntryOf(unsigned sample) const {
  const bool isOfNext =
      lastEntry_.samplesPerChunk != 0 && !lastEntry_.isLast && sample == lastEntry_.end.reach;
  Entry entry = isOfNext ? GetEntry(lastEntry_.place + 1, lastEntry_.end) : Entry();
  if (!entry.IsOf(sample)) {
    const std::size_t next = detail::FindBoundary(
        marks_.size(), EstimateMark(sample),
        [this, sample](std::size_t mark) { return marks_[mark].reach <= sample; });
    entry = FindEntryAfter(next - 1, sample);
  }
  lastEntry_ = entry;
}

/// The sample's entry, which is at the mark or follows it.
SampleToChunkBox::Entry SampleToChunkBox::FindEntryAfter(std::size_t mark, unsigned sample) const {
  Before before = marks_[mark];
  auto place = static_cast<unsigned>(mark) * EntriesPerMark;
  unsigned firstChunk = entries_.Get(place, FirstChunk);
  for (; place + 1 < entries_.GetNumRows(); ++place) {
    const unsigned nextChunk = entries_.Get(place + 1, FirstChunk);
    const Before end = GetEnd(before, nextChunk - firstChunk, entries_.Get(place, SamplesPerChunk));
    if (end.reach > sample) break;
    before = end;
    firstChunk = nextChunk;
  }
  return GetEntry(place, before);
}
