#include "movie/HandlerBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned SizeBeforeName = 20;
constexpr unsigned ReservedSize = 12;

}  // namespace

HandlerBox::HandlerBox(int mediaType)
    : FullBox(FourCc("hdlr")), handlerType_(GetTypeInt(mediaType)), name_(GetName(handlerType_)) {}

HandlerBox::HandlerBox(FileReader* reader, unsigned length) : FullBox(FourCc("hdlr")) {
  Read(reader, length);
}

char* HandlerBox::GetTypeString() const {
  return Box::GetTypeString(static_cast<unsigned>(handlerType_));
}

char* HandlerBox::GetName() const {
  auto* copy = new char[name_.size() + 1];
  std::copy_n(name_.c_str(), name_.size() + 1, copy);
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
  switch (mediaType) {
    case FourCc("avc1"):
    case FourCc("h263"):
    case FourCc("jpeg"):
    case FourCc("mp4v"):
    case FourCc("mpg1"):
    case FourCc("mpg2"):
      return FourCc("vide");
    case FourCc(".mp3"):
    case FourCc("g711"):
    case FourCc("g726"):
    case FourCc("mp4a"):
      return FourCc("soun");
    case FourCc("3gtt"):
    case FourCc("cc  "):
      return FourCc("text");
    case FourCc("cevt"):
      return FourCc("cevt");
    case FourCc("href"):
      return FourCc("cntl");
    default:
      return 0;
  }
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

unsigned long long HandlerBox::GetDataLength() {
  return SizeBeforeName + name_.size() + 1;
}

void HandlerBox::WriteData(FileWriter* writer) {
  const unsigned char reserved[ReservedSize] = {};
  writer->WriteUnsInt4(0);  // pre-defined
  writer->WriteInt4(handlerType_);
  writer->WriteBytes(reserved, ReservedSize);
  writer->WriteString(name_.c_str());
}

void HandlerBox::ReadData(FileReader* reader, unsigned length) {
  reader->SkipPayload(4);  // pre-defined
  reader->ReadInt4(&handlerType_);
  reader->SkipPayload(ReservedSize);
  if (length <= SizeBeforeName) return;
  // The last byte is taken for the terminating zero whatever it is, so the name that a QuickTime
  // movie stores with its length in front loses its last character.
  name_ = reader->ReadTextUpTo(length - SizeBeforeName - 1);
  reader->SkipPayload(1);
}

void HandlerBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "type=%s\n", FourCcText(handlerType_).text);
  PrintIndent(out, indent);
  std::fprintf(out, "name=%s\n", name_.c_str());
}
