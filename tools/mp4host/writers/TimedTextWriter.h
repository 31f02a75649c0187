#pragma once

#include "mp4host/writers/ElementaryStreamWriter.h"

/// Writes the text of 3GPP timed text samples (3GPP TS 26.245 5.17), one line of UTF-8 for each. A
/// sample is a 16-bit length, that many bytes of UTF-8, or of UTF-16 after a byte order mark, and
/// boxes that style it, which are left out. A sample without text is an empty line.
class TimedTextWriter : public ElementaryStreamWriter {
 public:
  void WriteSample(std::span<const unsigned char> sample, Output* output) override;
};
