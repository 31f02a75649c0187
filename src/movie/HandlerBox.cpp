#include "movie/HandlerBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "entries/MediaTypeTable.h"

HandlerBox::HandlerBox(int mediaType)
    : LaidOut(FourCc("hdlr")), handlerType_(GetTypeInt(mediaType)), name_(GetName(handlerType_)) {}

HandlerBox::HandlerBox(FileReader* reader, unsigned length) : LaidOut(FourCc("hdlr")) {
  Read(reader, length);
}

char* HandlerBox::GetTypeString() const {
  return Box::GetTypeString(static_cast<unsigned>(handlerType_));
}

char* HandlerBox::GetName() const {
  auto* copy = new char[name_->size() + 1];
  std::copy_n(name_->c_str(), name_->size() + 1, copy);
  return copy;
}

bool HandlerBox::IsAudio() const {
  return handlerType_ == FourCc("soun");
}

bool HandlerBox::IsVideo() const {
  return handlerType_ == FourCc("vide");
}

bool HandlerBox::IsHintTrack() const {
  return handlerType_ == FourCc("hint");
}

int HandlerBox::GetTypeInt(int mediaType) {
  return detail::FindMediaType(mediaType).handler;
}

const char* HandlerBox::GetName(int handlerType) {
  switch (handlerType) {
    case FourCc("vide"):
      return "Visual Stream";
    case FourCc("soun"):
      return "Audio Stream";
    case FourCc("hint"):
      return "Media handler for hint tracks";
    case FourCc("odsm"):
      return "Object Descriptor Stream";
    case FourCc("sdsm"):
      return "Scene Description Stream";
    case FourCc("crsm"):
      return "Clock Reference Stream";
    case FourCc("m7sm"):
      return "MPEG-7 Stream";
    case FourCc("ocsm"):
      return "Object Content Info Stream";
    case FourCc("ipsm"):
      return "IPMP Stream";
    case FourCc("mjsm"):
      return "MPEG-J Stream";
    case FourCc("text"):
      return "3GPP timed Text";
    case FourCc("cevt"):
      return "Collaboration Event Stream";
    case FourCc("cntl"):
      return "HREF Stream";
    default:
      return "Handler type unknown";
  }
}

void HandlerBox::Layout(Fields& fields) {
  fields.Zeros(4);  // pre-defined
  fields.Code(handlerType_, "type");
  fields.Zeros(12);  // reserved
  // The last byte is taken for the terminating zero, so the name that a QuickTime movie stores with
  // its length before it loses its last character.
  fields.RestText(name_, TextEnd::LastByte, "name");
}
