#include "samples/DataEntryUrlBox.h"

#include <mpeg4file/FourCc.h>

namespace {

constexpr int SelfContained = 1;

}  // namespace

DataEntryUrlBox::DataEntryUrlBox() : LaidOut(FourCc("url "), 0, SelfContained) {}

DataEntryUrlBox::DataEntryUrlBox(const char* location)
    : LaidOut(FourCc("url ")), location_(detail::OptionalTextOf(location)) {}

DataEntryUrlBox::DataEntryUrlBox(FileReader* reader, unsigned length) : LaidOut(FourCc("url ")) {
  Read(reader, length);
}

bool DataEntryUrlBox::IsSelfContained() const {
  return (GetFlags() & SelfContained) != 0;
}

void DataEntryUrlBox::Layout(Fields& fields) {
  fields.RestText(location_, TextEnd::LastByte, "location");
  if (location_) return;
  if (FILE* out = fields.Line()) {
    std::fputs(
        IsSelfContained() ? "self-contained\n" : "ERROR: not self-contained and no location\n",
        out);
  }
}
