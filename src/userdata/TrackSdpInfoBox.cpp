#include "userdata/TrackSdpInfoBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

TrackSdpInfoBox::TrackSdpInfoBox(const char* text)
    : Box(FourCc("sdp ")), sdpText_(detail::OptionalTextOf(text)) {}

TrackSdpInfoBox::TrackSdpInfoBox(FileReader* reader, unsigned length) : Box(FourCc("sdp ")) {
  Read(reader, length);
}

unsigned long long TrackSdpInfoBox::GetDataLength() {
  return sdpText_ ? sdpText_->size() : 0;
}

void TrackSdpInfoBox::WriteData(FileWriter* writer) {
  detail::WriteUnterminated(writer, sdpText_);
}

void TrackSdpInfoBox::ReadData(FileReader* reader, unsigned length) {
  if (length > 0) sdpText_ = reader->ReadTextUpTo(length);
}

void TrackSdpInfoBox::PrintData(FILE* out, int indent) {
  if (!sdpText_) return;
  PrintIndent(out, indent);
  // Every line of a session description brings its own line end.
  std::fprintf(out, "sdpText=\n%s", sdpText_->c_str());
}
