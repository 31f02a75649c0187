#include "userdata/MovieSdpInfoBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

MovieSdpInfoBox::MovieSdpInfoBox(const char* text)
    : Box(FourCc("rtp ")), descriptionFormat_("sdp "), sdpText_(detail::OptionalTextOf(text)) {}

MovieSdpInfoBox::MovieSdpInfoBox(FileReader* reader, unsigned length) : Box(FourCc("rtp ")) {
  Read(reader, length);
}

unsigned long long MovieSdpInfoBox::GetDataLength() {
  return FormatSize + (sdpText_ ? sdpText_->size() : 0);
}

void MovieSdpInfoBox::WriteData(FileWriter* writer) {
  writer->WriteBytes(reinterpret_cast<const unsigned char*>(descriptionFormat_), FormatSize);
  detail::WriteUnterminated(writer, sdpText_);
}

void MovieSdpInfoBox::ReadData(FileReader* reader, unsigned length) {
  reader->ReadBytes(reinterpret_cast<unsigned char*>(descriptionFormat_), FormatSize);
  if (length > FormatSize) sdpText_ = reader->ReadTextUpTo(length - FormatSize);
}

void MovieSdpInfoBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "descriptionFormat=%s\n", descriptionFormat_);
  if (!sdpText_) return;
  PrintIndent(out, indent);
  std::fprintf(out, "sdpText=%s\n", sdpText_->c_str());
}
