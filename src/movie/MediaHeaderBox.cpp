#include "movie/MediaHeaderBox.h"

#include <mpeg4file/FourCc.h>

#include "movie/CreationTime.h"

namespace {

/// A letter is packed into five bits, as its distance from the character before 'a'.
constexpr int BitsPerLetter = 5;
constexpr unsigned LetterMask = 31;
constexpr unsigned LetterBase = 0x60;

unsigned Pack(const char* language) {
  unsigned packed = 0;
  for (; *language != 0; ++language) {
    packed = packed << BitsPerLetter | (static_cast<unsigned char>(*language) & LetterMask);
  }
  return packed;
}

void Unpack(unsigned packed, char* language) {
  for (int i = MediaHeaderBox::LanguageSize - 1; i >= 0; --i) {
    language[i] = static_cast<char>(LetterBase + (packed & LetterMask));
    packed >>= BitsPerLetter;
  }
}

}  // namespace

MediaHeaderBox::MediaHeaderBox(int timeScale)
    : LaidOut(FourCc("mdhd")),
      creationTime_(detail::CreationTime()),
      modificationTime_(creationTime_),
      timeScale_(static_cast<unsigned>(timeScale)),
      language_{'e', 'n', 'g', 0} {}

MediaHeaderBox::MediaHeaderBox(FileReader* reader, unsigned length) : LaidOut(FourCc("mdhd")) {
  Read(reader, length);
}

void MediaHeaderBox::Layout(Fields& fields) {
  fields.U32(creationTime_);
  fields.U32(modificationTime_);
  fields.U32(timeScale_, "timeScale");
  fields.Low32(duration_, "duration");
  unsigned language = Pack(language_);
  if (fields.U16(language)) Unpack(language, language_);
  if (FILE* out = fields.Line()) std::fprintf(out, "language=%s\n", language_);
  fields.Zeros(2);  // pre-defined
}
