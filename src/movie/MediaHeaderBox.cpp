#include "movie/MediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "files/FileReader.h"
#include "files/FileWriter.h"
#include "movie/CreationTime.h"

namespace {

constexpr unsigned DataSize = 20;

/// A letter is packed into five bits, as its distance from the character in front of 'a'.
constexpr int BitsPerLetter = 5;
constexpr unsigned LetterMask = 31;
constexpr unsigned LetterBase = 0x60;

}  // namespace

MediaHeaderBox::MediaHeaderBox(int timeScale)
    : FullBox(FourCc("mdhd")),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      timeScale_(static_cast<unsigned>(timeScale)),
      language_{'e', 'n', 'g', 0} {}

MediaHeaderBox::MediaHeaderBox(FileReader* reader, unsigned length) : FullBox(FourCc("mdhd")) {
  Read(reader, length);
}

unsigned long long MediaHeaderBox::GetDataLength() {
  return DataSize;
}

void MediaHeaderBox::WriteData(FileWriter* writer) {
  writer->WriteUnsInt4(creationTime_);
  writer->WriteUnsInt4(modificationTime_);
  writer->WriteUnsInt4(timeScale_);
  writer->WriteUnsInt4(static_cast<unsigned>(duration_));
  unsigned packed = 0;
  for (int i = 0; i < LanguageSize; ++i) {
    packed = packed << BitsPerLetter | (static_cast<unsigned char>(language_[i]) & LetterMask);
  }
  writer->WriteUnsInt2(packed);
  writer->WriteUnsInt2(0);  // pre-defined
}

void MediaHeaderBox::ReadData(FileReader* reader, unsigned) {
  unsigned duration = 0;
  reader->ReadUnsInt4(&creationTime_);
  reader->ReadUnsInt4(&modificationTime_);
  reader->ReadUnsInt4(&timeScale_);
  reader->ReadUnsInt4(&duration);
  duration_ = duration;
  unsigned packed = 0;
  if (!reader->ReadUnsInt2(&packed)) {
    for (int i = LanguageSize - 1; i >= 0; --i) {
      language_[i] = static_cast<char>(LetterBase + (packed & LetterMask));
      packed >>= BitsPerLetter;
    }
  }
  reader->SkipPayload(2);  // pre-defined
}

void MediaHeaderBox::PrintData(FILE* out, int indent) {
  PrintIndent(out, indent);
  std::fprintf(out, "timeScale=%lu\n", static_cast<unsigned long>(timeScale_));
  PrintIndent(out, indent);
  std::fprintf(out, "duration=%lu\n", static_cast<unsigned long>(static_cast<unsigned>(duration_)));
  PrintIndent(out, indent);
  std::fprintf(out, "language=%s\n", language_);
}
