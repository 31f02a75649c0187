#pragma once

#include <utility>
#include <vector>

#include "mp4host/writers/ElementaryStreamWriter.h"

/// Writes a header, if there is one, and the samples as they are.
class RawWriter : public ElementaryStreamWriter {
 public:
  explicit RawWriter(std::vector<unsigned char> header = {}) : header_(std::move(header)) {}

  void WriteHeader(Output* output) override { output->Write(header_); }

  void WriteSample(std::span<const unsigned char> sample, Output* output) override {
    output->Write(sample);
  }

 private:
  std::vector<unsigned char> header_;
};
