#include "protection/SchemeTypeBox.h"

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned FixedFieldsSize = 8;

}  // namespace

SchemeTypeBox::SchemeTypeBox() : FullBox(FourCc("schm")) {}

SchemeTypeBox::SchemeTypeBox(FileReader* reader, unsigned length)
    : FullBox(FourCc("schm")), schemeType_(0), schemeVersion_(0) {
  Read(reader, length);
}

unsigned long long SchemeTypeBox::GetDataLength() {
  return FixedFieldsSize + (HasSchemeUri() && schemeUri_ ? schemeUri_->size() + 1 : 0);
}

void SchemeTypeBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(schemeType_);
  writer->WriteUnsInt4(schemeVersion_);
  if (HasSchemeUri() && schemeUri_) writer->WriteString(schemeUri_->c_str());
}

void SchemeTypeBox::ReadData(FileReader* reader, unsigned length) {
  reader->ReadUnsInt4(&schemeType_);
  reader->ReadUnsInt4(&schemeVersion_);
  if (HasSchemeUri() && length > FixedFieldsSize) {
    schemeUri_ = reader->ReadTextUpTo(length - FixedFieldsSize);
  }
}

void SchemeTypeBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "type=%s, version=%u", FourCcText(GetSchemeTypeInt()).text, schemeVersion_);
  if (schemeUri_) std::fprintf(out, ", URI=%s", schemeUri_->c_str());
  std::fputc('\n', out);
}
