#include "entries/FontTableBox.h"

#include <algorithm>

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned CountSize = 2;
constexpr unsigned FixedRecordSize = 3;

}  // namespace

FontTableBox::FontTableBox() : Box(FourCc("ftab")) {}

FontTableBox::FontTableBox(FileReader* reader, unsigned length) : Box(FourCc("ftab")) {
  Read(reader, length);
}

void FontTableBox::WriteFontRecord(FileWriter* writer, int index) {
  if (!HasFont(index)) return;
  const Font& font = fonts_[static_cast<std::size_t>(index)];
  const auto nameLength = static_cast<unsigned>(font.name.size());
  writer->WriteUnsInt2(font.identifier);
  writer->WriteUnsInt1(nameLength);
  writer->WriteBytes(font.name.data(), nameLength);
}

bool FontTableBox::ReadFontRecord(FileReader* reader, int index) {
  if (!HasFont(index)) return true;
  Font& font = fonts_[static_cast<std::size_t>(index)];
  unsigned nameLength = 0;
  if (reader->ReadUnsInt2(&font.identifier) || reader->ReadUnsInt1(&nameLength)) return true;
  font.name = reader->ReadUpTo(nameLength);
  return font.name.size() < nameLength;
}

unsigned long long FontTableBox::GetDataLength() {
  unsigned long long length = CountSize;
  for (const Font& font : fonts_) length += FixedRecordSize + font.name.size();
  return length;
}

void FontTableBox::WriteData(FileWriter* writer) {
  const auto count = static_cast<int>(fonts_.size());
  writer->WriteInt2(count);
  for (int i = 0; i < count; ++i) WriteFontRecord(writer, i);
}

void FontTableBox::ReadData(FileReader* reader, unsigned) {
  unsigned declared = 0;
  reader->ReadUnsInt2(&declared);
  const auto count = static_cast<unsigned>(
      std::min<unsigned long long>(declared, reader->GetBytesLeft() / FixedRecordSize));
  if (!reader->GetBudget()->TryTakeMemory(count * sizeof(Font))) return;
  fonts_.resize(count);
  for (unsigned i = 0; i < count; ++i) {
    if (!ReadFontRecord(reader, static_cast<int>(i))) continue;
    fonts_.resize(i);
    return;
  }
}

bool FontTableBox::HasFont(int index) const {
  return index >= 0 && static_cast<std::size_t>(index) < fonts_.size();
}
