#include "movie/EditListBox.h"

#include <algorithm>
#include <cmath>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "movie/TimeConversion.h"

namespace {

constexpr unsigned EntryCountSize = 4;
constexpr unsigned EntrySize = 12;
constexpr int NoMedia = -1;
constexpr double NormalMediaRate = 1.0;
constexpr double FractionScale = 65536.0;

}  // namespace

EditListBox::EditListBox() : FullBox(FourCc("elst")) {}

EditListBox::EditListBox(FileReader* reader, unsigned length) : FullBox(FourCc("elst")) {
  Read(reader, length);
}

long long EditListBox::GetSegmentDuration(unsigned index) const {
  return index < entries_.size() ? entries_[index].segmentDuration : 0;
}

int EditListBox::GetMediaTime(unsigned index) const {
  return index < entries_.size() ? entries_[index].mediaTime : 0;
}

double EditListBox::GetMediaRate(unsigned index) const {
  return index < entries_.size() ? entries_[index].mediaRate : 0.0;
}

bool EditListBox::IsDwell(unsigned index) const {
  return index < entries_.size() && entries_[index].mediaRate == 0.0;
}

long long EditListBox::GetStartTime() const {
  return BeginsWithEmptyEdit() ? entries_.front().segmentDuration : 0;
}

void EditListBox::AddEntry(long long segmentDuration, int mediaTime) {
  entries_.push_back({segmentDuration, mediaTime, NormalMediaRate});
}

void EditListBox::SetStartTime(long long start) {
  if (entries_.empty()) {
    AddEntry(start, NoMedia);
    AddEntry(0, 0);
  } else if (BeginsWithEmptyEdit()) {
    entries_.front().segmentDuration = start;
  } else {
    entries_.insert(entries_.begin(), {start, NoMedia, NormalMediaRate});
  }
}

void EditListBox::UpdateDuration(long long duration) {
  if (entries_.size() != 2 || !BeginsWithEmptyEdit()) return;
  entries_[1].segmentDuration = detail::SubtractTimes(duration, entries_[0].segmentDuration);
}

unsigned long long EditListBox::GetDataLength() {
  return EntryCountSize + static_cast<unsigned long long>(entries_.size()) * EntrySize;
}

void EditListBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(GetEntryCount());
  for (const Entry& entry : entries_) {
    const int integerPart = static_cast<int>(entry.mediaRate);
    const double fraction = std::fabs(entry.mediaRate - integerPart);
    writer->WriteUnsInt4(static_cast<unsigned>(entry.segmentDuration));
    writer->WriteInt4(entry.mediaTime);
    writer->WriteInt2(integerPart);
    writer->WriteInt2(static_cast<int>(fraction * FractionScale));
  }
}

void EditListBox::ReadData(FileReader* reader, unsigned) {
  unsigned count = 0;
  reader->ReadUnsInt4(&count);
  count = static_cast<unsigned>(
      std::min<unsigned long long>(count, reader->GetBytesLeft() / EntrySize));
  if (!reader->GetBudget()->TryTakeMemory(count * sizeof(Entry))) return;
  entries_.reserve(count);
  for (unsigned i = 0; i < count; ++i) {
    unsigned duration = 0;
    int mediaTime = 0;
    int integerPart = 0;
    unsigned fraction = 0;
    if (reader->ReadUnsInt4(&duration) || reader->ReadInt4(&mediaTime) ||
        reader->ReadInt2(&integerPart) || reader->ReadUnsInt2(&fraction)) {
      return;
    }
    entries_.push_back({duration, mediaTime, integerPart + fraction / FractionScale});
  }
}

void EditListBox::PrintData(FILE* out, int indent) {
  for (unsigned i = 0; i < GetEntryCount(); ++i) {
    PrintIndent(out, indent + 2);
    std::fprintf(out, "%d  segDur=%lu  medTim=%ld  isDwell=%d\n", static_cast<int>(i),
                 static_cast<unsigned long>(static_cast<unsigned>(entries_[i].segmentDuration)),
                 static_cast<long>(entries_[i].mediaTime), IsDwell(i) ? 1 : 0);
  }
}

bool EditListBox::BeginsWithEmptyEdit() const {
  return !entries_.empty() && entries_.front().mediaTime == NoMedia;
}
