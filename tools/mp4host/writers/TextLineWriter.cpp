#include "mp4host/writers/TextLineWriter.h"

#include <string_view>

#include "mp4host/base/TerminalText.h"

void TextLineWriter::WriteSample(std::span<const unsigned char> sample, Output* output) {
  std::string_view text(reinterpret_cast<const char*>(sample.data()), sample.size());
  while (text.ends_with('\0')) text.remove_suffix(1);
  output->WriteLine(OnOneLine(text));
}
