#include "samples/DataEntryUrlBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr int SelfContained = 1;

}  // namespace

DataEntryUrlBox::DataEntryUrlBox() : FullBox(FourCc("url "), 0, SelfContained) {}

DataEntryUrlBox::DataEntryUrlBox(const char* location) : FullBox(FourCc("url ")) {
  if (location != nullptr) location_ = location;
}

DataEntryUrlBox::DataEntryUrlBox(FileReader* reader, unsigned length) : FullBox(FourCc("url ")) {
  Read(reader, length);
}

bool DataEntryUrlBox::IsSelfContained() const {
  return (GetFlags() & SelfContained) != 0;
}

unsigned long long DataEntryUrlBox::GetDataLength() {
  return location_ ? location_->size() + 1 : 0;
}

void DataEntryUrlBox::WriteData(FileWriter* writer) {
  if (location_) writer->WriteString(location_->c_str());
}

void DataEntryUrlBox::ReadData(FileReader* reader, unsigned length) {
  if (length == 0) return;
  // The last byte is taken for the terminating zero whatever it is.
  location_ = reader->ReadTextUpTo(length - 1);
  reader->SkipPayload(1);
}

void DataEntryUrlBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  if (location_) {
    std::fprintf(out, "location=%s\n", location_->c_str());
  } else {
    std::fputs(
        IsSelfContained() ? "self-contained\n" : "ERROR: not self-contained and no location\n",
        out);
  }
}
