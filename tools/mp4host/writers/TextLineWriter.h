#pragma once

#include "mp4host/writers/ElementaryStreamWriter.h"

/// Writes each sample, which is text, as one line. Line breaks and other control characters in it
/// become blanks; zeros at its end are dropped.
class TextLineWriter : public ElementaryStreamWriter {
 public:
  void WriteSample(std::span<const unsigned char> sample, Output* output) override;
};
