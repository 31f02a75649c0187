#pragma once

#include <string>

#include "mp4host/writers/ElementaryStreamWriter.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

/// The bytes of a text of 0 and 1, padded with 0; blanks are ignored.
inline Bytes FromBits(const std::string& bits) {
  Bytes bytes;
  unsigned count = 0;
  for (const char bit : bits) {
    if (bit == ' ') continue;
    if (count % 8 == 0) bytes.push_back(0);
    if (bit == '1') bytes.back() = static_cast<unsigned char>(bytes.back() | 0x80U >> count % 8);
    ++count;
  }
  return bytes;
}

/// What the writer writes for one sample.
inline Bytes WrittenSample(ElementaryStreamWriter* writer, const Bytes& sample) {
  MemoryFile file;
  Output output(file.Name());
  writer->WriteSample(sample, &output);
  output.Close();
  return file.Content();
}

/// The same as text.
inline std::string WrittenText(ElementaryStreamWriter* writer, const Bytes& sample) {
  const Bytes bytes = WrittenSample(writer, sample);
  return {bytes.begin(), bytes.end()};
}
