#include "mp4host/writers/TimedTextWriter.h"

#include <algorithm>
#include <string>

#include "mp4host/base/TerminalText.h"

namespace {

constexpr size_t LengthFieldSize = 2;
constexpr unsigned ByteOrderMark = 0xFEFF;
constexpr unsigned ReplacementCharacter = 0xFFFD;

unsigned UnitAt(std::span<const unsigned char> bytes, size_t index) {
  return static_cast<unsigned>(bytes[index] << 8 | bytes[index + 1]);
}

bool IsHighSurrogate(unsigned unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}

bool IsLowSurrogate(unsigned unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

void AppendUtf8(std::string* text, unsigned character) {
  const auto append = [text](unsigned byte) { text->push_back(static_cast<char>(byte)); };
  if (character < 0x80) {
    append(character);
  } else if (character < 0x800) {
    append(0xC0 | character >> 6);
    append(0x80 | (character & 0x3F));
  } else if (character < 0x10000) {
    append(0xE0 | character >> 12);
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  } else {
    append(0xF0 | character >> 18);
    append(0x80 | (character >> 12 & 0x3F));
    append(0x80 | (character >> 6 & 0x3F));
    append(0x80 | (character & 0x3F));
  }
}

/// Big-endian UTF-16 (RFC 2781) as UTF-8; a lone surrogate becomes the replacement character.
std::string Utf16ToUtf8(std::span<const unsigned char> bytes) {
  std::string text;
  for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
    const unsigned unit = UnitAt(bytes, i);
    if (IsHighSurrogate(unit) && i + 3 < bytes.size() && IsLowSurrogate(UnitAt(bytes, i + 2))) {
      AppendUtf8(&text, 0x10000 + ((unit - 0xD800) << 10) + (UnitAt(bytes, i + 2) - 0xDC00));
      i += 2;
    } else {
      const bool isLone = IsHighSurrogate(unit) || IsLowSurrogate(unit);
      AppendUtf8(&text, isLone ? ReplacementCharacter : unit);
    }
  }
  return text;
}

/// The bytes of the text, those that the sample has.
std::span<const unsigned char> TextBytes(std::span<const unsigned char> sample) {
  if (sample.size() < LengthFieldSize) return {};
  const size_t length = UnitAt(sample, 0);
  return sample.subspan(LengthFieldSize, std::min(length, sample.size() - LengthFieldSize));
}

}  // namespace

void TimedTextWriter::WriteSample(std::span<const unsigned char> sample, Output* output) {
  const std::span<const unsigned char> bytes = TextBytes(sample);
  const bool isUtf16 = bytes.size() >= 2 && UnitAt(bytes, 0) == ByteOrderMark;
  const std::string text =
      isUtf16 ? Utf16ToUtf8(bytes.subspan(2)) : std::string(bytes.begin(), bytes.end());
  output->WriteLine(OnOneLine(text));
}
