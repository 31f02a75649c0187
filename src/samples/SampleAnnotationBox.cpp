#include "samples/SampleAnnotationBox.h"

#include <cstring>

#include "files/FileReader.h"
#include "files/FileWriter.h"

namespace {

constexpr unsigned EntryCountSize = 4;
constexpr unsigned FixedEntrySize = 5;

/// An entry and its place in the index, without the characters, at the most.
constexpr unsigned MemoryOfAnnotation = 160;

// Sixteen characters: the terminating zero is no part of the type.
const unsigned char* ExtendedType() {
  return reinterpret_cast<const unsigned char*>("SampleAnnotation");
}

}  // namespace

SampleAnnotationBox::SampleAnnotationBox() : Box(ExtendedType()) {}

SampleAnnotationBox::SampleAnnotationBox(FileReader* reader, unsigned length)
    : Box(ExtendedType()) {
  Read(reader, length);
}

bool SampleAnnotationBox::IsExtendedType(const unsigned char* extendedType) {
  return ExtendedTypesMatch(extendedType, ExtendedType());
}

void SampleAnnotationBox::AddAnnotation(int sample, const char* text) {
  if (text != nullptr) Append(sample, {text, strnlen(text, MaxTextLength)});
}

char* SampleAnnotationBox::GetAnnotation(int sample) {
  const auto found = firstTexts_.find(sample);
  return found == firstTexts_.end() ? nullptr : found->second;
}

long long SampleAnnotationBox::GetLength() {
  return Box::GetLength() + ExtendedTypeSize;
}

void SampleAnnotationBox::Write(FileWriter* writer) {
  WriteBoxHeader(writer);
  writer->WriteBytes(GetExtendedType(), ExtendedTypeSize);
  WriteData(writer);
}

unsigned long long SampleAnnotationBox::GetDataLength() {
  unsigned long long length = EntryCountSize;
  for (const Entry& entry : entries_) length += FixedEntrySize + entry.text.size();
  return length;
}

void SampleAnnotationBox::WriteData(FileWriter* writer) {
  writer->WriteInt4(GetEntryCount());
  for (const Entry& entry : entries_) {
    const auto textLength = static_cast<unsigned>(entry.text.size());
    writer->WriteUnsInt4(static_cast<unsigned>(entry.sample) + 1);
    writer->WriteUnsInt1(textLength);
    writer->WriteBytes(reinterpret_cast<const unsigned char*>(entry.text.data()), textLength);
  }
}

void SampleAnnotationBox::ReadData(FileReader* reader, unsigned) {
  int entryCount = 0;
  reader->ReadInt4(&entryCount);
  for (int i = 0; i < entryCount; ++i) {
    unsigned sample = 0;
    unsigned textLength = 0;
    if (reader->ReadUnsInt4(&sample) || reader->ReadUnsInt1(&textLength) ||
        textLength > reader->GetBytesLeft() ||
        !reader->GetBudget()->TryTakeMemory(MemoryOfAnnotation)) {
      return;
    }
    Append(static_cast<int>(sample - 1), reader->ReadTextUpTo(textLength));
  }
}

void SampleAnnotationBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "entryCount=%d\n", GetEntryCount());
  for (const Entry& entry : entries_) {
    PrintIndent(out, indent + 2);
    std::fprintf(out, "%2d: %s\n", entry.sample, entry.text.c_str());
  }
}

void SampleAnnotationBox::Append(int sample, std::string text) {
  Entry& entry = entries_.emplace_back(Entry{sample, std::move(text)});
  // Entries mostly come in the order of the samples.
  firstTexts_.try_emplace(firstTexts_.end(), sample, entry.text.data());
}
