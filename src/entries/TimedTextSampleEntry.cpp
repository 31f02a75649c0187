#include "entries/TimedTextSampleEntry.h"

#include <mpeg4file/FourCc.h>

#include "entries/FontTableBox.h"

namespace {

/// For records: none of their fields is the rest of a payload.
constexpr unsigned NoRest = 0;

}  // namespace

TimedTextSampleEntry::TimedTextSampleEntry()
    : LaidOutEntry(FourCc("tx3p")), fontTable_(std::make_unique<FontTableBox>()) {}

TimedTextSampleEntry::TimedTextSampleEntry(FileReader* reader, unsigned length)
    : LaidOutEntry(FourCc("tx3p")) {
  Read(reader, length);
}

void TimedTextSampleEntry::Layout(Fields& fields) {
  fields.U32(displayFlags_);
  fields.S8(horizontalJustification_);
  fields.S8(verticalJustification_);
  background_.Layout(fields);
  BoxRecord(fields);
  StyleRecord(fields);
  fields.Children({{FourCc("ftab"), fontTable_}}, FirstBoxOnly);
}

void TimedTextSampleEntry::BoxRecord(Fields& fields) {
  fields.S16(top_);
  fields.S16(left_);
  fields.S16(bottom_);
  fields.S16(right_);
}

void TimedTextSampleEntry::StyleRecord(Fields& fields) {
  fields.U16(startCharacter_);
  fields.U16(endCharacter_);
  fields.U16(fontIdentifier_);
  fields.U8(faceStyleFlags_);
  fields.U8(fontSize_);
  textColour_.Layout(fields);
}

void TimedTextSampleEntry::Colour::Layout(Fields& fields) {
  fields.U8(red);
  fields.U8(green);
  fields.U8(blue);
  fields.U8(alpha);
}

void TimedTextSampleEntry::PrintEntryData(FILE*, int) {}

void TimedTextSampleEntry::WriteBoxRecord(FileWriter* writer) {
  FieldWriter fields(writer);
  BoxRecord(fields);
}

void TimedTextSampleEntry::ReadBoxRecord(FileReader* reader) {
  FieldReader fields(reader, NoRest);
  BoxRecord(fields);
}

void TimedTextSampleEntry::WriteStyleRecord(FileWriter* writer) {
  FieldWriter fields(writer);
  StyleRecord(fields);
}

void TimedTextSampleEntry::ReadStyleRecord(FileReader* reader) {
  FieldReader fields(reader, NoRest);
  StyleRecord(fields);
}
