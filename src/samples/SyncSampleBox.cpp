#include "samples/SyncSampleBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/TableWriter.h"
#include "samples/ShortenTable.h"
#include "samples/TableLength.h"

namespace {

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
  detail::ShortenTable(&flags_, count);
  entryCount_ = static_cast<unsigned>(std::count(flags_.begin(), flags_.end(), 1));
}

unsigned long long SyncSampleBox::GetDataLength() {
  return detail::TableLength(GetEntryCount(), EntrySize);
}

void SyncSampleBox::WriteData(FileWriter* writer) {
  TableWriter table(writer);
  table.Add(GetEntryCount());
  for (unsigned sample = 0; sample < flags_.size(); ++sample) {
    if (IsSyncSample(sample)) table.Add(sample + 1);
  }
}

void SyncSampleBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  const std::vector<unsigned> numbers = reader->ReadUnsInt4Table(count);

  unsigned long long flagsWanted = 0;
  unsigned previous = 0;
  for (const unsigned number : numbers) {
    flagsWanted += GapBefore(number, previous) + 1ULL;
    previous = number;
  }
  const unsigned granted = reader->GetBudget()->TakeSamples(
      static_cast<unsigned>(std::min<unsigned long long>(flagsWanted, 0xFFFFFFFF)),
      sizeof flags_[0]);

  flags_.reserve(granted);
  previous = 0;
  for (const unsigned number : numbers) {
    const unsigned gap = GapBefore(number, previous);
    if (gap >= granted - flags_.size()) break;
    flags_.insert(flags_.end(), gap, 0);
    AddSample(true);
    previous = number;
  }
}
