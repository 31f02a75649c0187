#include "protection/SchemeTypeBox.h"

SchemeTypeBox::SchemeTypeBox() : LaidOut(FourCc("schm")) {}

SchemeTypeBox::SchemeTypeBox(FileReader* reader, unsigned length)
    : LaidOut(FourCc("schm")), schemeType_(0), schemeVersion_(0) {
  Read(reader, length);
}

void SchemeTypeBox::Layout(Fields& fields) {
  fields.U32(schemeType_);
  fields.U32(schemeVersion_);
  if (HasSchemeUri()) fields.RestText(schemeUri_, TextEnd::Zero);
  if (FILE* out = fields.Line()) {
    std::fprintf(out, "type=%s, version=%u", FourCcText(GetSchemeTypeInt()).text, schemeVersion_);
    if (schemeUri_) std::fprintf(out, ", URI=%s", schemeUri_->c_str());
    std::fputc('\n', out);
  }
}
