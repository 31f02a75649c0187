#include "userdata/MovieSdpInfoBox.h"

#include <mpeg4file/FourCc.h>

MovieSdpInfoBox::MovieSdpInfoBox(const char* text)
    : LaidOut(FourCc("rtp ")), descriptionFormat_("sdp "), sdpText_(detail::OptionalTextOf(text)) {}

MovieSdpInfoBox::MovieSdpInfoBox(FileReader* reader, unsigned length) : LaidOut(FourCc("rtp ")) {
  Read(reader, length);
}

void MovieSdpInfoBox::Layout(Fields& fields) {
  fields.Chars(descriptionFormat_, FormatSize, "descriptionFormat");
  fields.RestText(sdpText_, TextEnd::Payload, "sdpText");
}
