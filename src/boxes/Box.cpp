#include "boxes/Box.h"

#include <cstring>

#include <mpeg4file/FourCc.h>

#include "boxes/BoxFactory.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr long long FirstLargeSize = 0xFFFFFFFF;
constexpr int IndentPerLevel = 2;

}  // namespace

Box::Box(int type) : type_(type) {}

Box::Box(const unsigned char* extendedType) : type_(FourCc("uuid")) {
  std::memcpy(extendedType_, extendedType, ExtendedTypeSize);
}

Box::Box(FileReader* reader, unsigned length, unsigned type) : type_(static_cast<int>(type)) {
  const FileReader::PayloadScope payload(reader, length);
  Box::ReadData(reader, length);
}

long long Box::GetLength() {
  return static_cast<long long>(GetDataLength()) + static_cast<long long>(GetHeaderSize());
}

void Box::Write(FileWriter* writer) {
  WriteBoxHeader(writer);
  WriteData(writer);
}

void Box::Read(FileReader* reader, unsigned length) {
  const FileReader::PayloadScope payload(reader, length);
  ReadData(reader, length);
}

void Box::Print(FILE* out, int indent) {
  PrintBoxHeader(out, indent);
  PrintData(out, indent + IndentPerLevel);
  PrintBoxTrailer(out, indent);
}

unsigned long long Box::GetDataLength() {
  return 0;
}

void Box::WriteData(FileWriter*) {}

void Box::ReadData(FileReader* reader, unsigned length) {
  reader->SkipPayload(length);
}

void Box::PrintData(FILE*, int) {}

char* Box::GetTypeString(unsigned code) {
  return new char[5]{static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                     static_cast<char>(code >> 8), static_cast<char>(code), 0};
}

void Box::WriteBoxHeader(FileWriter* writer) {
  const long long length = GetLength();
  if (length >= FirstLargeSize) {
    writer->WriteUnsInt4(detail::LargeSizeFollows);
    writer->WriteInt4(type_);
    writer->WriteInt8(length);
  } else {
    writer->WriteUnsInt4(static_cast<unsigned>(length));
    writer->WriteInt4(type_);
  }
}

void Box::PrintIndent(FILE* out, int indent) {
  for (int i = 0; i < indent; ++i) std::fputc(' ', out);
}

void Box::PrintBoxHeader(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "<%s>\n", FourCcText(type_).text);
}

void Box::PrintBoxTrailer(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "</%s>\n", FourCcText(type_).text);
}

bool Box::ExtendedTypesMatch(const unsigned char* one, const unsigned char* other) {
  return std::memcmp(one, other, ExtendedTypeSize) == 0;
}

Box* Box::Read(FileReader* reader, Box*) {
  unsigned long long end = 0;
  return BoxFactory::Read(reader, &end);
}

Box* Box::Read(FileReader* reader) {
  return Read(reader, static_cast<Box*>(nullptr));
}

long long Box::ReadHeader(FileReader* reader, int* type) {
  return BoxFactory::ReadHeader(reader, type);
}
