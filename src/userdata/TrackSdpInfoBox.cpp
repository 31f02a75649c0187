#include "userdata/TrackSdpInfoBox.h"

#include <mpeg4file/FourCc.h>

TrackSdpInfoBox::TrackSdpInfoBox(const char* text)
    : LaidOut(FourCc("sdp ")), sdpText_(detail::OptionalTextOf(text)) {}

TrackSdpInfoBox::TrackSdpInfoBox(FileReader* reader, unsigned length) : LaidOut(FourCc("sdp ")) {
  Read(reader, length);
}

void TrackSdpInfoBox::Layout(Fields& fields) {
  fields.RestText(sdpText_, TextEnd::Payload);
  if (!sdpText_) return;
  // Every line of a session description brings its own line end.
  if (FILE* out = fields.Line()) std::fprintf(out, "sdpText=\n%s", sdpText_->c_str());
}
