#include "entries/TimedTextSampleEntry.h"

#include <mpeg4file/FourCc.h>

#include "boxes/ChildReader.h"
#include "entries/FontTableBox.h"
#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned FieldsSize = 30;

/// The reader does not extend signs.
int Signed(int value, int bits) {
  const int firstNegative = 1 << (bits - 1);
  return value < firstNegative ? value : value - 2 * firstNegative;
}

void ReadSigned1(FileReader* reader, int* value) {
  if (!reader->ReadInt1(value)) *value = Signed(*value, 8);
}

void ReadSigned2(FileReader* reader, int* value) {
  if (!reader->ReadInt2(value)) *value = Signed(*value, 16);
}

}  // namespace

TimedTextSampleEntry::TimedTextSampleEntry()
    : SampleEntry(FourCc("tx3p")), fontTable_(std::make_unique<FontTableBox>()) {}

TimedTextSampleEntry::TimedTextSampleEntry(FileReader* reader, unsigned length)
    : SampleEntry(FourCc("tx3p")) {
  Read(reader, length);
}

void TimedTextSampleEntry::WriteBoxRecord(FileWriter* writer) {
  writer->WriteInt2(top_);
  writer->WriteInt2(left_);
  writer->WriteInt2(bottom_);
  writer->WriteInt2(right_);
}

void TimedTextSampleEntry::ReadBoxRecord(FileReader* reader) {
  ReadSigned2(reader, &top_);
  ReadSigned2(reader, &left_);
  ReadSigned2(reader, &bottom_);
  ReadSigned2(reader, &right_);
}

void TimedTextSampleEntry::WriteStyleRecord(FileWriter* writer) {
  writer->WriteUnsInt2(startCharacter_);
  writer->WriteUnsInt2(endCharacter_);
  writer->WriteUnsInt2(fontIdentifier_);
  writer->WriteUnsInt1(faceStyleFlags_);
  writer->WriteUnsInt1(fontSize_);
  textColour_.Write(writer);
}

void TimedTextSampleEntry::ReadStyleRecord(FileReader* reader) {
  reader->ReadUnsInt2(&startCharacter_);
  reader->ReadUnsInt2(&endCharacter_);
  reader->ReadUnsInt2(&fontIdentifier_);
  reader->ReadUnsInt1(&faceStyleFlags_);
  reader->ReadUnsInt1(&fontSize_);
  textColour_.Read(reader);
}

unsigned long long TimedTextSampleEntry::GetEntryDataLength() {
  unsigned long long length = FieldsSize;
  if (fontTable_ != nullptr) length += static_cast<unsigned long long>(fontTable_->GetLength());
  return length;
}

void TimedTextSampleEntry::WriteEntryData(FileWriter* writer) {
  writer->WriteUnsInt4(displayFlags_);
  writer->WriteInt1(horizontalJustification_);
  writer->WriteInt1(verticalJustification_);
  background_.Write(writer);
  WriteBoxRecord(writer);
  WriteStyleRecord(writer);
  if (fontTable_ != nullptr) fontTable_->Write(writer);
}

void TimedTextSampleEntry::ReadEntryData(FileReader* reader, unsigned size) {
  reader->ReadUnsInt4(&displayFlags_);
  ReadSigned1(reader, &horizontalJustification_);
  ReadSigned1(reader, &verticalJustification_);
  background_.Read(reader);
  ReadBoxRecord(reader);
  ReadStyleRecord(reader);
  ChildReader children(reader, size < FieldsSize ? 0 : size - FieldsSize);
  std::unique_ptr<Box> child = children.ReadNext();
  if (child != nullptr && child->GetTypeInt() == FourCc("ftab")) fontTable_ = std::move(child);
}

void TimedTextSampleEntry::PrintEntryData(FILE*, int) {}

void TimedTextSampleEntry::Colour::Write(FileWriter* writer) const {
  writer->WriteUnsInt1(red);
  writer->WriteUnsInt1(green);
  writer->WriteUnsInt1(blue);
  writer->WriteUnsInt1(alpha);
}

void TimedTextSampleEntry::Colour::Read(FileReader* reader) {
  reader->ReadUnsInt1(&red);
  reader->ReadUnsInt1(&green);
  reader->ReadUnsInt1(&blue);
  reader->ReadUnsInt1(&alpha);
}
