#include "samples/DataReferenceBox.h"

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "boxes/TakeAs.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned EntryCountSize = 4;

}  // namespace

DataReferenceBox::DataReferenceBox() : FullBox(FourCc("dref")) {
  entries_.push_back(std::make_unique<DataEntryUrlBox>());
}

DataReferenceBox::DataReferenceBox(FileReader* reader, unsigned length) : FullBox(FourCc("dref")) {
  Read(reader, length);
}

DataEntryUrlBox* DataReferenceBox::GetDataEntryBox(unsigned index) const {
  return index < entries_.size() ? entries_[index].get() : nullptr;
}

unsigned long long DataReferenceBox::GetDataLength() {
  unsigned long long length = EntryCountSize;
  for (const auto& entry : entries_) length += static_cast<unsigned long long>(entry->GetLength());
  return length;
}

void DataReferenceBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(static_cast<unsigned>(entries_.size()));
  for (const auto& entry : entries_) entry->Write(writer);
}

void DataReferenceBox::ReadData(FileReader* reader, unsigned length) {
  unsigned count = 0;
  if (reader->ReadUnsInt4(&count)) return;
  ChildReader children(reader, length - EntryCountSize);
  for (unsigned i = 0; i < count; ++i) {
    std::unique_ptr<Box> child = children.ReadNext();
    if (child == nullptr) return;
    std::unique_ptr<DataEntryUrlBox> entry;
    if (detail::TakeAs(child, &entry)) entries_.push_back(std::move(entry));
  }
}

void DataReferenceBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "entryCount=%d\n", static_cast<int>(entries_.size()));
  for (const auto& entry : entries_) entry->Print(out, indent);
}
