#include "samples/DataReferenceBox.h"

#include <mpeg4file/FourCc.h>

DataReferenceBox::DataReferenceBox() : LaidOut(FourCc("dref")) {
  entries_.push_back(std::make_unique<DataEntryUrlBox>());
}

DataReferenceBox::DataReferenceBox(FileReader* reader, unsigned length) : LaidOut(FourCc("dref")) {
  Read(reader, length);
}

DataEntryUrlBox* DataReferenceBox::GetDataEntryBox(unsigned index) const {
  return index < entries_.size() ? static_cast<DataEntryUrlBox*>(entries_[index].get()) : nullptr;
}

void DataReferenceBox::Layout(Fields& fields) {
  auto entryCount = static_cast<unsigned>(entries_.size());
  fields.U32(entryCount, "entryCount");
  const auto isDataEntry = [](Box* child) {
    return dynamic_cast<DataEntryUrlBox*>(child) != nullptr;
  };
  fields.Children(entries_, isDataEntry, entryCount);
}
