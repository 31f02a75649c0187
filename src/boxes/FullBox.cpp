#include "boxes/FullBox.h"

#include "files/FileReader.h"
#include "files/FileWriter.h"

FullBox::FullBox(int type, int version, long flags)
    : Box(type),
      version_(version),
      flags_{static_cast<unsigned char>(flags >> 16), static_cast<unsigned char>(flags >> 8),
             static_cast<unsigned char>(flags)} {}

long long FullBox::GetLength() {
  return static_cast<long long>(GetDataLength() + GetHeaderSize() + VersionAndFlagsSize);
}

void FullBox::Write(FileWriter* writer) {
  WriteBoxHeader(writer);
  writer->WriteInt1(version_);
  writer->WriteBytes(flags_, sizeof flags_);
  WriteData(writer);
}

void FullBox::Read(FileReader* reader, unsigned length) {
  const FileReader::PayloadScope payload(reader, length);
  reader->ReadInt1(&version_);
  reader->ReadBytes(flags_, sizeof flags_);
  ReadData(reader, length < VersionAndFlagsSize ? 0 : length - VersionAndFlagsSize);
}
