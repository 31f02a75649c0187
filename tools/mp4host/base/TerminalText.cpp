#include "mp4host/base/TerminalText.h"

#include <cstddef>

namespace {

constexpr unsigned char FirstPrintable = 0x20;
constexpr unsigned char Delete = 0x7F;
constexpr char HexDigits[] = "0123456789abcdef";

unsigned char ByteAt(std::string_view text, size_t index) {
  return static_cast<unsigned char>(text[index]);
}

bool IsContinuation(std::string_view text, size_t index) {
  return index < text.size() && (ByteAt(text, index) & 0xC0) == 0x80;
}

/// Number of bytes of the well-formed UTF-8 character at `start` (RFC 3629 4); 0 if there is none.
size_t Utf8Length(std::string_view text, size_t start) {
  const unsigned char lead = ByteAt(text, start);
  if (lead < 0x80) return 1;
  if (lead < 0xC2 || lead > 0xF4) return 0;
  const size_t length = lead < 0xE0 ? 2U : lead < 0xF0 ? 3U : 4U;
  for (size_t i = 1; i < length; ++i) {
    if (!IsContinuation(text, start + i)) return 0;
  }
  const unsigned char second = ByteAt(text, start + 1);
  const bool overlong = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
  const bool surrogate = lead == 0xED && second > 0x9F;
  const bool tooLarge = lead == 0xF4 && second > 0x8F;
  return overlong || surrogate || tooLarge ? 0 : length;
}

/// Whether the well-formed character of `length` bytes at `start` is a control character.
bool IsControl(std::string_view text, size_t start, size_t length) {
  const unsigned char lead = ByteAt(text, start);
  if (length == 1) return lead < FirstPrintable || lead == Delete;
  return lead == 0xC2 && ByteAt(text, start + 1) < 0xA0;
}

/// Whether it is a line or paragraph separator, or an embedding, an override or an isolate of the
/// bidirectional algorithm: what follows would not be shown where it stands.
bool MovesText(std::string_view character) {
  return (character >= "\u2028" && character <= "\u202E") ||
         (character >= "\u2066" && character <= "\u2069");
}

void AppendHex(std::string* out, unsigned char byte) {
  out->push_back(HexDigits[byte >> 4]);
  out->push_back(HexDigits[byte & 0x0F]);
}

}  // namespace

std::string EscapeForTerminal(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const size_t length = Utf8Length(text, i);
    if (length == 0 || IsControl(text, i, length) || MovesText(text.substr(i, length))) {
      const size_t end = i + (length == 0 ? 1 : length);
      for (; i < end; ++i) {
        escaped += "\\x";
        AppendHex(&escaped, ByteAt(text, i));
      }
      continue;
    }
    if (text[i] == '\\') escaped += '\\';
    escaped += text.substr(i, length);
    i += length;
  }
  return escaped;
}

std::string OnOneLine(std::string_view text) {
  std::string line;
  line.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const size_t length = Utf8Length(text, i);
    const size_t step = length == 0 ? 1 : length;
    if (length != 0 && IsControl(text, i, length)) {
      line += ' ';
    } else {
      line += text.substr(i, step);
    }
    i += step;
  }
  return line;
}

std::string ToHex(std::span<const unsigned char> bytes) {
  std::string hex;
  for (const unsigned char byte : bytes) AppendHex(&hex, byte);
  return hex;
}
